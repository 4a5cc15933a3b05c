// The polkit policy shipped in resources/polkit (its installed form is checked against
// polkit's DTD by the install test): every action asks for an administrator each time,
// and each one matches a program and first argument the application really runs through
// pkexec, so its message is the one shown.
#include "diskutil/DiskUtilTestSupport.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>

namespace velmora::test {
namespace {

std::string policyPath() {
    const char* source = std::getenv("VELMORA_SOURCE_DIR");
    return std::string(source ? source : ".") + "/resources/polkit/org.velmora.dataeraser.policy";
}

struct Action {
    std::string id;
    std::string text;
    std::string annotation(const std::string& key) const {
        const std::regex pattern("<annotate key=\"" + key + "\">([^<]*)</annotate>");
        std::smatch match;
        return std::regex_search(text, match, pattern) ? match[1].str() : std::string();
    }
};

std::vector<Action> actionsOf(const std::string& xml) {
    std::vector<Action> actions;
    const std::regex pattern(R"re(<action id="([^"]+)">([\s\S]*?)</action>)re");
    for (auto it = std::sregex_iterator(xml.begin(), xml.end(), pattern); it != std::sregex_iterator(); ++it) {
        actions.push_back({(*it)[1].str(), (*it)[2].str()});
    }
    return actions;
}

}  // namespace

TEST(PolkitPolicy, EveryActionAsksForAnAdministratorAndMatchesWhatTheApplicationRuns) {
    std::ifstream file(policyPath());
    ASSERT_TRUE(file) << policyPath();
    const std::string xml((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());

    const std::vector<Action> actions = actionsOf(xml);
    ASSERT_EQ(actions.size(), 5u);
    std::vector<std::string> diskUtilVerbs;
    for (const Action& action : actions) {
        SCOPED_TRACE(action.id);
        EXPECT_TRUE(action.id.starts_with("org.velmora.dataeraser."));
        // An administrator's password every time: no "yes", no cached authorisation.
        for (const char* kind : {"allow_any", "allow_inactive", "allow_active"}) {
            EXPECT_NE(action.text.find(std::string("<") + kind + ">auth_admin</" + kind + ">"), std::string::npos);
        }
        EXPECT_NE(action.text.find("<message>Authentication is required to "), std::string::npos);
        // The install fills in the tools folder; the install test checks the result.
        const std::string path = action.annotation("org.freedesktop.policykit.exec.path");
        const std::string argv1 = action.annotation("org.freedesktop.policykit.exec.argv1");
        if (path == "@VELMORA_TOOLS_DIR@/velmora-privileged-helper") {
            EXPECT_EQ(argv1, "") << "the helper takes no arguments";
        } else {
            EXPECT_EQ(path, "@VELMORA_TOOLS_DIR@/velmora-diskutil");
            ASSERT_FALSE(argv1.empty());
            diskUtilVerbs.push_back(argv1);
        }
    }
    EXPECT_EQ(diskUtilVerbs, (std::vector<std::string>{"reformat", "eraseVolume", "rename", "eject"}));
    // Each verb is one the tool knows: without its operands it answers with its usage.
    for (const std::string& verb : diskUtilVerbs) {
        SCOPED_TRACE(verb);
        const CommandResult result = runDiskUtil({verb});
        EXPECT_NE(result.exitCode, 0);
        EXPECT_NE(result.err.find("Usage: velmora-diskutil " + verb), std::string::npos) << result.err;
    }
}

}  // namespace velmora::test
