#include "registry_command.h"

#include <cstdio>
#include <optional>

#include "failure.h"
#include "platform/host/registry_store.h"
#include "platform/text.h"
#include "registry_data.h"

namespace MachineTool {

using Platform::Error;
using Platform::Host::NamedRegistryValue;
using Platform::Host::RegistryStore;

const char* const RegistryUsage =
    "reg query KEY [/v NAME | /ve] [/s]\n"
    "reg add KEY [/v NAME | /ve] [/t TYPE] [/d DATA] [/f]\n"
    "reg delete KEY [/v NAME | /ve | /va] /f\n"
    "KEY begins with HKCU\\ or HKEY_CURRENT_USER\\; TYPE is REG_SZ (the default), REG_EXPAND_SZ,\n"
    "REG_DWORD or REG_BINARY. Nothing is asked: what stands is replaced or removed with /f only.";

namespace {

constexpr const char* RootName = "HKEY_CURRENT_USER";
constexpr const char* NotFoundText =
    "The system was unable to find the specified registry key or value.";
constexpr const char* DoneText = "The operation completed successfully.";

struct Request {
    std::wstring key;                  ///< below the root
    std::optional<std::wstring> name;  ///< an empty one is the key's default value
    std::string type = "REG_SZ";
    std::string data;
    bool force = false;
    bool allValues = false;
    bool subtree = false;

    std::string Id() const { return Platform::Host::RegistryKeyId(key); }
};

std::wstring ParseKey(const std::string& text) {
    const std::size_t separator = text.find('\\');
    const std::wstring root = Platform::WideFromUtf8(text.substr(0, separator));
    if (!Platform::EqualIgnoringCase(root, L"HKCU") &&
        !Platform::EqualIgnoringCase(root, L"HKEY_CURRENT_USER")) {
        throw Failure("Invalid key name: this machine has HKCU only.");
    }
    return separator == std::string::npos ? L""
                                          : Platform::WideFromUtf8(text.substr(separator + 1));
}

Request ParseRequest(const std::vector<std::string>& arguments) {
    if (arguments.size() < 2) throw Failure(RegistryUsage, 2);
    Request request;
    request.key = ParseKey(arguments[1]);
    for (std::size_t at = 2; at < arguments.size(); ++at) {
        const std::string option =
            Platform::Utf8FromWide(Platform::LowerCase(Platform::WideFromUtf8(arguments[at])));
        const auto value = [&]() -> const std::string& {
            if (++at == arguments.size()) throw Failure("" + option + " needs a value.", 2);
            return arguments[at];
        };
        if (option == "/v") {
            request.name = Platform::WideFromUtf8(value());
        } else if (option == "/ve") {
            request.name = L"";
        } else if (option == "/t") {
            request.type = value();
        } else if (option == "/d") {
            request.data = value();
        } else if (option == "/f") {
            request.force = true;
        } else if (option == "/va") {
            request.allValues = true;
        } else if (option == "/s") {
            request.subtree = true;
        } else {
            throw Failure("Invalid argument: " + arguments[at] + "\n" + RegistryUsage, 2);
        }
    }
    return request;
}

void Demand(Error error) {
    if (error == Error::FileNotFound) throw Failure(NotFoundText);
    if (!Succeeded(error)) throw Failure("The registry cannot be used", error);
}

std::string FullName(const std::wstring& key) {
    return key.empty() ? RootName : std::string(RootName) + '\\' + Platform::Utf8FromWide(key);
}

void PrintValue(const NamedRegistryValue& value) {
    const std::string name = value.name.empty() ? "(Default)" : Platform::Utf8FromWide(value.name);
    std::printf("    %s    %s    %s\n", name.c_str(), TypeName(value.value.type).c_str(),
                FormatData(value.value).c_str());
}

std::wstring Below(const std::wstring& key, const std::wstring& name) {
    return key.empty() ? name : key + L'\\' + name;
}

void QueryKey(const std::wstring& key, bool subtree) {
    RegistryStore& store = RegistryStore::Instance();
    const std::string id = Platform::Host::RegistryKeyId(key);
    std::vector<NamedRegistryValue> values;
    std::vector<std::wstring> keys;
    Demand(store.FindKey(id));
    Demand(store.ListValues(id, values));
    Demand(store.ListKeys(id, keys));
    if (!values.empty()) std::printf("\n%s\n", FullName(key).c_str());
    for (const NamedRegistryValue& value : values)
        PrintValue(value);
    if (!subtree) std::printf("\n");
    for (const std::wstring& name : keys) {
        if (subtree) {
            QueryKey(Below(key, name), true);
        } else {
            std::printf("%s\n", FullName(Below(key, name)).c_str());
        }
    }
}

void Query(const Request& request) {
    if (!request.name) {
        QueryKey(request.key, request.subtree);
        return;
    }
    NamedRegistryValue value{*request.name, {}};
    Demand(RegistryStore::Instance().ReadValue(request.Id(), value.name, value.value));
    std::printf("\n%s\n", FullName(request.key).c_str());
    PrintValue(value);
    std::printf("\n");
}

void Add(const Request& request) {
    RegistryStore& store = RegistryStore::Instance();
    if (request.name) {
        const Platform::RegistryValue value = ParseData(request.type, request.data);
        Platform::RegistryValue old;
        if (!request.force && Succeeded(store.ReadValue(request.Id(), *request.name, old))) {
            throw Failure("The value stands already; /f replaces it.");
        }
        Demand(store.CreateKey(request.key));
        Demand(store.WriteValue(request.Id(), *request.name, value.type, value.data));
    } else {
        Demand(store.CreateKey(request.key));
    }
    std::puts(DoneText);
}

void Delete(const Request& request) {
    if (!request.force) throw Failure("Nothing is removed without /f.");
    if (request.Id().empty()) throw Failure("The root is not removed.");
    RegistryStore& store = RegistryStore::Instance();
    if (request.name) {
        Demand(store.RemoveValue(request.Id(), *request.name));
    } else if (request.allValues) {
        std::vector<NamedRegistryValue> values;
        Demand(store.FindKey(request.Id()));
        Demand(store.ListValues(request.Id(), values));
        for (const NamedRegistryValue& value : values) {
            Demand(store.RemoveValue(request.Id(), value.name));
        }
    } else {
        Demand(store.RemoveTree(request.Id()));
    }
    std::puts(DoneText);
}

}  // namespace

void RunRegistryCommand(const std::vector<std::string>& arguments) {
    const Request request = ParseRequest(arguments);
    if (arguments[0] == "query") {
        Query(request);
    } else if (arguments[0] == "add") {
        Add(request);
    } else if (arguments[0] == "delete") {
        Delete(request);
    } else {
        throw Failure(RegistryUsage, 2);
    }
}

}  // namespace MachineTool
