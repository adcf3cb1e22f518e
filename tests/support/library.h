#pragma once

#include <gtest/gtest.h>

#include <string>

#include "foundation/CTivManager.h"

/// Starts the library once for every test program that includes this: error texts are kept, nothing shows by itself.
class LibraryEnvironment : public testing::Environment {
public:
    void SetUp() override {
        CTivManager::Initialize();
        CTivManager::SetErrorMode(ErrorModeNone);
    }
};

inline const testing::Environment* const kLibraryEnvironment =
    testing::AddGlobalTestEnvironment(new LibraryEnvironment);

/// The text of the last failure, "" after ClearLastError.
inline std::string LastError() { return CTivManager::GetLastErrorString(); }
inline void ClearLastError() { CTivManager::ReportError("%s", ""); }
