// The builtins of the module bundles, for the fuzz targets that call them: the service
// framework and the module directory, started once per process as a host starts them. Warnings
// are dropped rather than written, which would slow the fuzzer down to the speed of stderr.
#pragma once

#include <builtin/declare/ModuleDirectory.hpp>
#include <ka/runtime.hpp>

#include "ModuleHost.hpp"

namespace fuzz {

inline const Norvane::builtin::declare::ModuleDirectory& sampleModules() {
    static const Norvane::builtin::declare::ModuleDirectory* const modules = [] {
        ka::setWarningHandler([](const std::u16string&) {});
        // Never deleted: the fuzzer leaves by exit() from wherever it is.
        return testsupport::startModules().release();
    }();
    return *modules;
}

}  // namespace fuzz
