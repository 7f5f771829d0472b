#pragma once

/// Where Wine 8.0 is not like Windows, in one place: under Wine the contract tests leave out what
/// one of these names. Windows is right, and the host adapter has to be like Windows.
namespace TestSupport {

/// False on Windows itself and on the host.
bool UnderWine();

/// A folder takes the place of a file when the file may be replaced.
inline bool FolderReplacesFile() {
    return UnderWine();
}
/// A rename that changes nothing but the case of letters leaves the name as it was.
inline bool RenameKeepsCase() {
    return UnderWine();
}
/// A file that becomes read-only stays hidden, and can be replaced by a rename.
inline bool ReadOnlyIsHalfKept() {
    return UnderWine();
}
/// The listing of a file answers InvalidName.
inline bool ListingAFileHasAnotherNumber() {
    return UnderWine();
}

}  // namespace TestSupport
