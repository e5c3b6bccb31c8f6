#include "core/CommandLine.h"

#include <gtest/gtest.h>

#include "support/FailureOf.h"

namespace {

String FailureOf(const util::StringList& arguments) {
    return test::FailureOf<std::invalid_argument>([&] { core::ParseCommandLine(arguments); });
}

}  // namespace

TEST(CommandLine, OptionsBecomeSettings) {
    const core::CommandLine line = core::ParseCommandLine(
        {"--no-shaders", "--fullscreen", "--scale", "1.5", "--language", "Deutsch", "a", "b.vxa"});
    EXPECT_EQ(line.m_settings, (util::StringList{"Resources.shaders = false", "System.fullscreen = true",
                                                 "GUI.scale = 1.500000", "App.language = \"Deutsch\""}));
    EXPECT_EQ(line.m_scene, "a b.vxa");
    EXPECT_FALSE(line.m_version || line.m_help);
}

TEST(CommandLine, TheVersionIsAskedForInManyWays) {
    for (const char* argument : {"-version", "--version", "/version", "x-versionx"}) {
        EXPECT_TRUE(core::ParseCommandLine({"scene.vxa", argument}).m_version) << argument;
    }
}

TEST(CommandLine, OnlyASceneIsAScene) {
    EXPECT_EQ(core::ParseCommandLine({"notes.txt"}).m_scene, "");
    EXPECT_EQ(core::ParseCommandLine({"my", "notes.txt"}).m_noScene, "my notes.txt");
    EXPECT_EQ(core::ParseCommandLine({"a.vxa"}).m_noScene, "");
    EXPECT_EQ(core::ParseCommandLine({"a.vxa", "more"}).m_scene, "");
    EXPECT_EQ(core::ParseCommandLine({"a", "-", "b.vxa"}).m_scene, "a - b.vxa");
    EXPECT_EQ(core::ParseCommandLine({}).m_scene, "");
}

TEST(CommandLine, WhatDoesNotFitIsNamed) {
    EXPECT_EQ(FailureOf({"--frobnicate"}), "unknown option --frobnicate");
    EXPECT_EQ(FailureOf({"--scale"}), "--scale needs a value");
    for (const char* scale : {"", "big", "0", "nan", "2x", "1000"}) {
        EXPECT_NE(FailureOf({"--scale", scale}), "") << scale;
    }
    EXPECT_NE(FailureOf({"--language", "a\"; System.exit; \""}), "");
}
