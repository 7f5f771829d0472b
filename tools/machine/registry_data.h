#pragma once

#include <string>

#include "platform/registry.h"

/// The types and data of registry values as Windows' own reg writes and reads them.
namespace MachineTool {

/// "REG_SZ" and so on; "REG_" and a number for a type without a name here.
std::string TypeName(Platform::RegistryType type);
std::string FormatData(const Platform::RegistryValue& value);

/// Throws Failure for a type that is not known, or data that is none of the type.
Platform::RegistryValue ParseData(const std::string& typeName, const std::string& text);

}  // namespace MachineTool
