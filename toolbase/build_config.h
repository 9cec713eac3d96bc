// Facts of the build, filled in by CMake (cmake/build_config.cc.in).
#pragma once

namespace Toolbase::Cli {

// The version of toolbase, e.g. "1.0.0".
extern char const* const kVersion;
// The installed plug-in folder relative to the installed executable's folder.
extern char const* const kInstalledPluginDir;

}  // namespace Toolbase::Cli
