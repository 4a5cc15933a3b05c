// The install rules, run for real: `cmake --install` of this build into a DESTDIR with
// prefix /usr, then the installed programs run from there (with no VELMORA_BIN_DIR, so
// they find their tools the way an installed copy does), the desktop files through their
// validators, the manual pages and completion against the programs' --help, and the
// Debian package made by cpack in the test's own folder through lintian.
#include "support/ChildProcess.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

const std::string kAppId = "app.velmora.dataeraser";
const std::string kTools = "/usr/libexec/velmora";

ProcessOptions optionsWith(std::vector<std::string> environment, int timeoutSeconds) {
    ProcessOptions options;
    options.environment = std::move(environment);
    options.timeoutSeconds = timeoutSeconds;
    return options;
}

bool haveProgram(const std::string& name) {
    return runProcess({"sh", "-c", "command -v \"$0\"", name}).status == 0;
}

bool isExecutableFile(const std::string& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && (info.st_mode & S_IXOTH);
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) result.push_back(line);
    return result;
}

// The text of a manual page between ".SH <section>" and the next ".SH".
std::string manSection(const std::string& page, const std::string& section) {
    const size_t start = page.find(".SH " + section + "\n");
    if (start == std::string::npos) return {};
    const size_t end = page.find("\n.SH ", start + 1);
    return page.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

class InstallTest : public ::testing::Test {
protected:
    // One install for the whole suite: the tree is only read, except by tests that work
    // on a copy of it.
    static void SetUpTestSuite() {
        // Installed programs find their tools by their own location: the build's tool
        // folder must not reach them (a child takes the first of two entries of a name).
        ::unsetenv("VELMORA_BIN_DIR");
        s_root = std::make_unique<TempDir>();
        const ProcessResult install = runProcess(
            {VELMORA_CMAKE_COMMAND, "--install", VELMORA_BUILD_DIR, "--prefix", "/usr"},
            optionsWith({"DESTDIR=" + destDir()}, 300));
        s_installError = install.status == 0 ? "" : install.out + install.err;
    }
    static void TearDownTestSuite() { s_root.reset(); }

    void SetUp() override { ASSERT_EQ(s_installError, "") << "cmake --install failed"; }

    static std::string destDir() { return *s_root / "destdir"; }
    static std::string installed(const std::string& path) { return destDir() + path; }

    // An installed program run as an installed copy runs, with a private data folder,
    // temporary folder and single-instance socket, and the application log (which names
    // missing helper programs) on standard error.
    static ProcessResult runInstalled(const std::string& root, std::vector<std::string> argv, int timeoutSeconds = 60) {
        argv[0] = root + argv[0];
        const std::string temporary = root + ".tmp";
        fs::create_directories(temporary);
        return runProcess(argv, optionsWith({"VELMORA_DATA_DIR=" + (*s_root / "data"), "TMPDIR=" + temporary,
                                             "VELMORA_NO_UPDATE_CHECK=1", "QT_QPA_PLATFORM=offscreen",
                                             "QT_LOGGING_RULES=velmora.app.warning=true"},
                                            timeoutSeconds));
    }

    // A copy of the installed tree that a test may change.
    static std::string copyOfInstall(const TempDir& where) {
        const std::string copy = where / "destdir";
        fs::copy(destDir(), copy, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        return copy;
    }

    static std::unique_ptr<TempDir> s_root;
    static std::string s_installError;
};
std::unique_ptr<TempDir> InstallTest::s_root;
std::string InstallTest::s_installError;

TEST_F(InstallTest, PutsProgramsInBinToolsInLibexecAndEveryProgramAnswersVersionAndHelp) {
    const std::vector<std::string> programs = {"/usr/bin/velmora", "/usr/bin/velmora-cli", kTools + "/srm",
                                               kTools + "/velmora-diskutil", kTools + "/velmora-privileged-helper"};
    for (const std::string& program : programs) {
        SCOPED_TRACE(program);
        ASSERT_TRUE(isExecutableFile(installed(program)));
        const std::string name = fs::path(program).filename();
        const ProcessResult version = runInstalled(destDir(), {program, "--version"});
        EXPECT_EQ(version.status, 0) << version.err;
        EXPECT_EQ(version.out, name + " (Velmora Data Eraser) " VELMORA_VERSION "\n");
        const ProcessResult help = runInstalled(destDir(), {program, "--help"});
        EXPECT_EQ(help.status, 0) << help.err;
        EXPECT_NE(help.out.find(name), std::string::npos) << "the usage goes to standard output: " << help.out;
    }
    // The tools are not on the search path, where another srm may live.
    EXPECT_FALSE(exists(installed("/usr/bin/srm")));
    EXPECT_FALSE(exists(installed("/usr/bin/velmora-diskutil")));
    for (const std::string& path :
         {"/usr/share/applications/" + kAppId + ".desktop", "/usr/share/metainfo/" + kAppId + ".metainfo.xml",
          "/usr/share/icons/hicolor/scalable/apps/" + kAppId + ".svg",
          "/usr/share/icons/hicolor/48x48/apps/" + kAppId + ".png",
          "/usr/share/icons/hicolor/256x256/apps/" + kAppId + ".png",
          std::string("/usr/share/polkit-1/actions/org.velmora.dataeraser.policy"),
          std::string("/usr/share/bash-completion/completions/velmora-cli"),
          std::string("/usr/share/man/man1/velmora-cli.1.gz"), std::string("/usr/share/man/man1/velmora-srm.1.gz"),
          std::string("/usr/share/man/man8/velmora-diskutil.8.gz"), std::string("/usr/share/doc/velmora/copyright")}) {
        EXPECT_TRUE(exists(installed(path))) << path;
    }
    // The rendered icons have the size their folder names.
    const std::string png = readFile(installed("/usr/share/icons/hicolor/48x48/apps/" + kAppId + ".png"));
    ASSERT_GT(png.size(), 24u);
    EXPECT_EQ(png.substr(1, 3), "PNG");
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\0\x30\0\0\0\x30", 8)) << "IHDR width and height 48";
}

TEST_F(InstallTest, PolicyNamesTheInstalledToolsAndIsValid) {
    const std::string policyPath = installed("/usr/share/polkit-1/actions/org.velmora.dataeraser.policy");
    const std::string policy = readFile(policyPath);
    EXPECT_EQ(policy.find('@'), std::string::npos) << "a placeholder was left in the installed policy";
    std::set<std::string> paths;
    const std::regex execPath(R"(<annotate key="org.freedesktop.policykit.exec.path">([^<]*)</annotate>)");
    for (auto it = std::sregex_iterator(policy.begin(), policy.end(), execPath); it != std::sregex_iterator(); ++it)
        paths.insert((*it)[1].str());
    EXPECT_EQ(paths, (std::set<std::string>{kTools + "/velmora-diskutil", kTools + "/velmora-privileged-helper"}));
    for (const std::string& path : paths) EXPECT_TRUE(isExecutableFile(installed(path))) << path;
    EXPECT_NE(policy.find("<icon_name>" + kAppId + "</icon_name>"), std::string::npos);

    const char* dtd = "/usr/share/polkit-1/policyconfig-1.dtd";
    if (!haveProgram("xmllint") || !exists(dtd)) {
        std::cerr << "SKIPPED (policy DTD check): xmllint or " << dtd << " is not installed" << std::endl;
        return;
    }
    const ProcessResult check = runProcess({"xmllint", "--noout", "--dtdvalid", dtd, policyPath});
    EXPECT_EQ(check.status, 0) << check.err;
}

TEST_F(InstallTest, DesktopEntryAndMetainfoPassTheirValidatorsAndNameTheInstalledIcon) {
    const std::string desktopPath = installed("/usr/share/applications/" + kAppId + ".desktop");
    const std::string metainfoPath = installed("/usr/share/metainfo/" + kAppId + ".metainfo.xml");
    const std::string desktop = readFile(desktopPath);
    const std::string metainfo = readFile(metainfoPath);
    EXPECT_NE(desktop.find("\nIcon=" + kAppId + "\n"), std::string::npos);
    EXPECT_NE(desktop.find("\nExec=velmora\n"), std::string::npos);
    EXPECT_NE(metainfo.find("<launchable type=\"desktop-id\">" + kAppId + ".desktop</launchable>"), std::string::npos);
    EXPECT_NE(metainfo.find("<release version=\"" VELMORA_VERSION "\""), std::string::npos);

    if (haveProgram("desktop-file-validate")) {
        const ProcessResult check = runProcess({"desktop-file-validate", desktopPath});
        EXPECT_EQ(check.status, 0) << check.out << check.err;
        EXPECT_EQ(check.out.find("error"), std::string::npos) << check.out;
    } else {
        std::cerr << "SKIPPED (desktop entry): desktop-file-validate is not installed (desktop-file-utils)"
                  << std::endl;
    }
    if (haveProgram("appstreamcli")) {
        const ProcessResult check = runProcess({"appstreamcli", "validate", "--no-net", "--pedantic", metainfoPath});
        EXPECT_EQ(check.status, 0) << check.out << check.err;
    } else {
        std::cerr << "SKIPPED (metainfo): appstreamcli is not installed (appstream)" << std::endl;
    }
}

// Installed, the tools are taken from libexec/velmora only: with srm missing there, a
// program called srm beside velmora-cli (as /usr/bin/srm of another package) is not run.
TEST_F(InstallTest, InstalledCliErasesWithTheToolInLibexecAndNeverWithOneBesideIt) {
    const TempDir work;
    const std::string file = work / "secret.txt";
    writeFile(file, uniqueMarker());
    ProcessResult erase = runInstalled(destDir(), {"/usr/bin/velmora-cli", "erase", "--yes", file});
    EXPECT_EQ(erase.status, 0) << erase.out << erase.err;
    EXPECT_FALSE(exists(file));

    const std::string copy = copyOfInstall(work);
    fs::remove(copy + kTools + "/srm");
    const std::string ranMarker = work / "stand-in-ran";
    writeFile(copy + "/usr/bin/srm", "#!/bin/sh\ntouch '" + ranMarker + "'\nexec rm -f -- \"$@\"\n");
    fs::permissions(copy + "/usr/bin/srm", fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec);
    writeFile(file, uniqueMarker());
    erase = runInstalled(copy, {"/usr/bin/velmora-cli", "erase", "--yes", file});
    EXPECT_EQ(erase.status, 1) << erase.out << erase.err;
    EXPECT_TRUE(exists(file)) << "the file went although the eraser is missing";
    EXPECT_FALSE(exists(ranMarker)) << "the srm beside velmora-cli was run";
}

// The installed application starts offscreen and finds all its helpers; with one removed
// it names the missing one at launch.
TEST_F(InstallTest, InstalledApplicationStartsOffscreenAndFindsItsHelpersInLibexec) {
    ProcessResult run = runInstalled(destDir(), {"/usr/bin/velmora"}, 6);
    EXPECT_TRUE(run.timedOut) << "the application ended by itself (status " << run.status << "): " << run.err;
    EXPECT_EQ(run.err.find("helper program missing"), std::string::npos) << run.err;

    const TempDir work;
    const std::string copy = copyOfInstall(work);
    fs::remove(copy + kTools + "/velmora-diskutil");
    run = runInstalled(copy, {"/usr/bin/velmora"}, 6);
    EXPECT_TRUE(run.timedOut) << run.err;
    EXPECT_NE(run.err.find("helper program missing: " + copy + kTools + "/velmora-diskutil"), std::string::npos)
        << run.err;
    EXPECT_EQ(run.err.find("missing: " + copy + kTools + "/srm"), std::string::npos) << run.err;
}

// velmora-cli's commands, as its --help lists them, are exactly those of its manual page
// and of its bash completion; srm's options and velmora-diskutil's verbs are in theirs.
TEST_F(InstallTest, ManualPagesAndCompletionCoverWhatTheProgramsHelpLists) {
    const ProcessResult help = runInstalled(destDir(), {"/usr/bin/velmora-cli", "--help"});
    std::set<std::string> commands;
    const std::regex commandLine(R"(^  ([a-z][a-z-]*) )");
    for (const std::string& line : lines(help.out)) {
        std::smatch match;
        if (std::regex_search(line, match, commandLine)) commands.insert(match[1].str());
    }
    ASSERT_GE(commands.size(), 10u) << help.out;

    const std::string manDir = VELMORA_SOURCE_DIR "/resources/man/";
    const std::string cliPage = manSection(readFile(manDir + "velmora-cli.1"), "COMMANDS");
    std::set<std::string> documented;
    const std::regex entry(R"(\.TP\n\.BR ([a-z][a-z-]*))");
    for (auto it = std::sregex_iterator(cliPage.begin(), cliPage.end(), entry); it != std::sregex_iterator(); ++it)
        documented.insert((*it)[1].str());
    EXPECT_EQ(documented, commands) << "velmora-cli.1 and velmora-cli --help list different commands";

    const std::string srmHelp = runInstalled(destDir(), {kTools + "/srm", "--help"}).out;
    const std::string srmPage = manSection(readFile(manDir + "velmora-srm.1"), "OPTIONS");
    const std::regex option(R"(^  (-[a-zA-Z0-9]|--[a-z0-9-]+))");
    int options = 0;
    for (const std::string& line : lines(srmHelp)) {
        std::smatch match;
        if (!std::regex_search(line, match, option)) continue;
        ++options;
        const std::string escaped = std::regex_replace(match[1].str(), std::regex("-"), "\\-");
        EXPECT_NE(srmPage.find(escaped), std::string::npos) << match[1] << " is missing from velmora-srm.1";
    }
    EXPECT_GE(options, 9);

    const std::string diskHelp = runInstalled(destDir(), {kTools + "/velmora-diskutil", "--help"}).out;
    const std::string diskPage = manSection(readFile(manDir + "velmora-diskutil.8"), "COMMANDS");
    const std::regex verb(R"((?:Usage: velmora-diskutil|\|) ([a-zA-Z]+))");
    int verbs = 0;
    for (auto it = std::sregex_iterator(diskHelp.begin(), diskHelp.end(), verb); it != std::sregex_iterator(); ++it) {
        ++verbs;
        EXPECT_TRUE(std::regex_search(diskPage, std::regex("\n\\.BI? \"?" + (*it)[1].str() + "\\b")))
            << (*it)[1] << " is missing from velmora-diskutil.8";
    }
    EXPECT_EQ(verbs, 7);

    const char* bashCompletion = "/usr/share/bash-completion/bash_completion";
    if (!exists(bashCompletion)) {
        std::cerr << "SKIPPED (completion): " << bashCompletion << " is not installed (bash-completion)" << std::endl;
        return;
    }
    // Completes the first word of `velmora-cli ` the way bash does on Tab.
    const ProcessResult completion = runProcess(
        {"bash", "-c",
         "source \"$1\"; source \"$2\"; COMP_WORDS=(velmora-cli ''); COMP_CWORD=1; COMP_LINE='velmora-cli ';"
         "COMP_POINT=${#COMP_LINE}; _velmora_cli velmora-cli '' velmora-cli; printf '%s\\n' \"${COMPREPLY[@]}\"",
         "bash", bashCompletion, installed("/usr/share/bash-completion/completions/velmora-cli")});
    ASSERT_EQ(completion.status, 0) << completion.err;
    std::set<std::string> completed;
    for (const std::string& word : lines(completion.out))
        if (!word.starts_with("--")) completed.insert(word);
    EXPECT_EQ(completed, commands) << "the completion and velmora-cli --help list different commands";
}

// The Debian package, made by cpack from this build into the test's folder: lintian finds
// no error, and the control file names the tools the programs run.
TEST_F(InstallTest, DebianPackagePassesLintianAndDependsOnTheToolsItRuns) {
    for (const char* tool : {"dpkg-deb", "dpkg-shlibdeps", "lintian"}) {
        if (!haveProgram(tool)) GTEST_SKIP() << "SKIPPED: " << tool << " is not installed (dpkg-dev, lintian)";
    }
    const TempDir work;
    const ProcessResult pack = runProcess({"cpack", "-G", "DEB", "--config", VELMORA_BUILD_DIR "/CPackConfig.cmake",
                                           "-B", work.path()},
                                          optionsWith({}, 600));
    ASSERT_EQ(pack.status, 0) << pack.out << pack.err;
    std::string deb;
    for (const fs::directory_entry& entry : fs::directory_iterator(work.path()))
        if (entry.path().extension() == ".deb") deb = entry.path();
    ASSERT_TRUE(std::regex_search(fs::path(deb).filename().string(),
                                  std::regex("^velmora_" VELMORA_VERSION "_[a-z0-9]+\\.deb$")))
        << deb;

    const std::string control = runProcess({"dpkg-deb", "--field", deb}).out;
    for (const char* field : {"Section: utils", "Homepage: https://www.velmora.app/", "Description: erase files"})
        EXPECT_NE(control.find(field), std::string::npos) << field << "\n" << control;
    std::smatch depends;
    ASSERT_TRUE(std::regex_search(control, depends, std::regex("\nDepends: ([^\n]*)"))) << control;
    for (const char* package : {"dosfstools", "exfatprogs", "e2fsprogs", "util-linux", "pkexec", "libqt6widgets6",
                                "libsqlite3-0", "libplist"})
        EXPECT_NE(depends[1].str().find(package), std::string::npos) << package << " in " << depends[1];

    const ProcessResult lint = runProcess({"lintian", "--tag-display-limit", "0", deb}, optionsWith({}, 600));
    std::string errors;
    for (const std::string& line : lines(lint.out + lint.err))
        if (line.starts_with("E: ")) errors += line + "\n";
    EXPECT_EQ(errors, "") << lint.out;
}

}  // namespace
}  // namespace velmora::test
