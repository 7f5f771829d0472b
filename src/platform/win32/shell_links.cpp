#include "platform/shell_links.h"

#include <windows.h>

#include <array>
#include <memory>
#include <objbase.h>
#include <shlobj.h>

#include "platform/steps.h"

namespace Platform {

namespace {

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using ComPtr = std::unique_ptr<Interface, Releaser>;

Error FromResult(HRESULT result) {
    if (SUCCEEDED(result)) return Error::None;
    return HRESULT_FACILITY(result) == FACILITY_WIN32 ? static_cast<Error>(HRESULT_CODE(result))
                                                      : Error::NotSupported;
}

ComPtr<IShellLinkW> MakeLink() {
    IShellLinkW* link = nullptr;
    const HRESULT result = CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_IShellLinkW, reinterpret_cast<void**>(&link));
    return ComPtr<IShellLinkW>(SUCCEEDED(result) ? link : nullptr);
}

ComPtr<IPersistFile> FileOf(IShellLinkW& link) {
    IPersistFile* file = nullptr;
    const HRESULT result = link.QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file));
    return ComPtr<IPersistFile>(SUCCEEDED(result) ? file : nullptr);
}

}  // namespace

Error SaveShellLink(const std::wstring& linkPath, const ShellLink& link) {
    const ComPtr<IShellLinkW> object = MakeLink();
    const ComPtr<IPersistFile> file = object ? FileOf(*object) : nullptr;
    if (!file) return Error::NotSupported;
    CountStep("link", linkPath);
    object->SetPath(link.target.c_str());
    object->SetWorkingDirectory(link.workingFolder.c_str());
    object->SetDescription(link.description.c_str());
    object->SetIconLocation(link.icon.c_str(), 0);
    return FromResult(file->Save(linkPath.c_str(), TRUE));
}

Error LoadShellLink(const std::wstring& linkPath, ShellLink& link) {
    const ComPtr<IShellLinkW> object = MakeLink();
    const ComPtr<IPersistFile> file = object ? FileOf(*object) : nullptr;
    if (!file) return Error::NotSupported;
    const HRESULT result = file->Load(linkPath.c_str(), STGM_READ);
    if (FAILED(result)) return FromResult(result);

    std::array<wchar_t, INFOTIPSIZE> text{};
    const auto size = static_cast<int>(text.size());
    object->GetPath(text.data(), size, nullptr, SLGP_RAWPATH);
    link.target = text.data();
    object->GetWorkingDirectory(text.data(), size);
    link.workingFolder = text.data();
    object->GetDescription(text.data(), size);
    link.description = text.data();
    int index = 0;
    object->GetIconLocation(text.data(), size, &index);
    link.icon = text.data();
    return Error::None;
}

ShellApartment::ShellApartment()
    : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

ShellApartment::~ShellApartment() {
    if (entered_) CoUninitialize();
}

}  // namespace Platform
