// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Application.h"

#include <gtest/gtest.h>

#include <memory>

namespace zav {

/// Keeps the application object that pictures need for the run of a test program.
class PictureApplication : public testing::Environment
{
public:
    void SetUp() override { m_application = createApplication(m_argc, m_argv, true); }
    void TearDown() override { m_application.reset(); }

private:
    int m_argc = 1;
    char m_name[4] = "zav";
    char *m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};

} // namespace zav
