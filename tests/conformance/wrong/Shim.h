/// A plug-in in front of the right one: each wrong plug-in defines the two functions below, usually by calling
/// the right ones and spoiling something.
#pragma once

#include <kestrel/importabi/Entries.h>
#include <kestrel/importabi/Records.h>

#include <cstdint>
#include <optional>
#include <string>

/// The right plug-in's entries. @{
std::int32_t Right(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2);
void RightIdentity(void* hostContext, ksPluginDataCallback callback);
/// @}

/// The bytes of a file that a request names; nothing where it is no file that can be read.
std::optional<std::string> ContentOf(const ksUTF16* path);

/// The wrong plug-in's. @{
std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2);
void WrongIdentity(void* hostContext, ksPluginDataCallback callback);
/// @}
