#pragma once

#include <cstdint>

namespace Platform {

/// What a port answers when it fails, as the numbers that Windows gives: they stand in messages
/// and logs, and the logic looks at some of them. Any number may occur, not only the named ones.
/// The host adapter maps its system's errors to the nearest of these.
enum class Error : std::uint32_t {
    None = 0,
    FileNotFound = 2,
    PathNotFound = 3,
    TooManyOpenFiles = 4,
    AccessDenied = 5,
    InvalidHandle = 6,
    NotEnoughMemory = 8,
    NotSameDevice = 17,
    NoMoreFiles = 18,
    WriteProtected = 19,
    NotReady = 21,
    GeneralFailure = 31,
    SharingViolation = 32,
    HandleDiskFull = 39,
    NotSupported = 50,
    BadNetworkPath = 53,
    FileExists = 80,
    InvalidParameter = 87,
    DiskFull = 112,
    InvalidName = 123,
    ModuleNotFound = 126,
    FolderNotEmpty = 145,
    AlreadyExists = 183,
    BadExecutable = 193,
    NameTooLong = 206,
    InvalidFolder = 267,
    KeyDeleted = 1018,
    DeviceFailure = 1117,
    Cancelled = 1223,
    UserMappedFile = 1224,
    UnresolvableLink = 1921,
    HttpTimeout = 12002,
    HttpInvalidUrl = 12005,
    HttpUnknownScheme = 12006,
    HttpNameNotResolved = 12007,
    HttpOperationCancelled = 12017,
    HttpCannotConnect = 12029,
    HttpConnectionAborted = 12030,
    HttpConnectionReset = 12031,
    HttpCertificateDate = 12037,
    HttpCertificateName = 12038,
    HttpCertificateIssuer = 12045,
    HttpCertificateUnchecked = 12057,
    HttpInvalidResponse = 12152,
    HttpRedirectFailed = 12156,
    HttpSecurityChannel = 12157,
};

constexpr bool Succeeded(Error error) {
    return error == Error::None;
}

/// The number that a message shows.
constexpr std::uint32_t Code(Error error) {
    return static_cast<std::uint32_t>(error);
}

}  // namespace Platform
