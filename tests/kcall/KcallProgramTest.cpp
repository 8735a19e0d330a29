// kcall over the sample module as a user runs it: JSON of literals and of each form of result,
// statuses of warnings, errors and malformed lines, --list, --lint, --modules, --describe and
// --explain.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <boost/json/parse.hpp>

namespace {

struct Outcome {
    int status;
    std::string out, err;
};

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

// Runs kcall with the arguments and the input on its standard input.
Outcome kcall(const std::vector<std::string>& arguments, const std::string& input = "") {
    const std::string errFile = testing::TempDir() + "kcall." + std::to_string(::getpid()) + ".err";
    std::string command = "printf '%s' " + quoted(input) + " | " + KCALL_PATH;
    for (const std::string& argument : arguments) command += " " + quoted(argument);
    FILE* pipe = ::popen((command + " 2>" + errFile).c_str(), "r");
    std::string out;
    std::array<char, 4096> buffer{};
    while (const std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe))
        out.append(buffer.data(), n);
    const int status = ::pclose(pipe);
    std::ifstream err(errFile);
    std::string errText(std::istreambuf_iterator<char>(err), {});
    std::remove(errFile.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out, errText};
}

TEST(Kcall, JsonOfLiteralsAndOfEachFormOfResult) {
    const struct {
        const char* line;
        const char* json;  // the whole line when it starts with '{', else a part of it
    } cases[] = {
        {"-2.5e-3", R"({"class":"double","size":[1,1],"complex":false,"data":[-2.5E-3]})"},
        {"[Inf -Inf NaN]",
         R"({"class":"double","size":[1,3],"complex":false,"data":["Inf","-Inf","NaN"]})"},
        {"3+4i", R"({"class":"double","size":[1,1],"complex":true,"data":[3E0],"imag":[4E0]})"},
        {"int32(5)", R"({"class":"int32","size":[1,1],"complex":false,"data":[5]})"},
        {"[]", R"({"class":"double","size":[0,0],"complex":false,"data":[]})"},
        {"'it''s'", R"({"class":"char","size":[1,4],"complex":false,"data":"it's"})"},
        {"\"abc\"", R"({"class":"string","size":[1,1],"data":"abc"})"},
        {"[plus(1, 1) 3]", R"({"class":"double","size":[1,2],"complex":false,"data":[2E0,3E0]})"},
        {"plus([1 2], [10; 20])",
         R"("size":[2,2],"complex":false,"data":[1.1E1,2.1E1,1.2E1,2.2E1])"},
        {"minus(int32(-2147483647), int32(5))", R"("data":[-2147483648])"},
        {"times(single(2), single(3))", R"("class":"single")"},
        {"plus(1+2i, 3)", R"("data":[4E0],"imag":[2E0])"},
        {"sqrt([4 9])", R"("data":[2E0,3E0])"},
        {"abs([-1 2])", R"("data":[1E0,2E0])"},
        {"sum([1 2; 3 4])", R"("size":[1,2],"complex":false,"data":[4E0,6E0])"},
        {"round(-2.5)", R"("data":[-3E0])"},
        {"upper('abc')", R"("class":"char","size":[1,3],"complex":false,"data":"ABC")"},
        {"class(int8(1))", R"("data":"int8")"},
        {"class(single(1))", R"("data":"single")"},
        {"hypot(3, 4)", R"("data":[5E0])"},
        {"abs([3+4i -1i])", R"("complex":false,"data":[5E0,1E0])"},
        {"sum([])", R"("data":[0E0])"},
        {"round(2.5)", R"("data":[3E0])"},
        {"round([0.5 1.5 2.5], \"even\")", R"("data":[0E0,2E0,2E0])"},
        {"round(-2.5, \"away\")", R"("data":[-3E0])"},
        {"plus(\"ab\", \"cd\")", R"("class":"string","size":[1,1],"data":"abcd")"},
        {"upper(\"straße\")", R"("data":"STRAßE")"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        std::string out = kcall({"--json", c.line}).out;
        out = out.substr(0, out.find('\n'));
        if (*c.json == '{') {
            EXPECT_EQ(out, c.json);
        }
        EXPECT_NE(out.find(c.json), std::string::npos) << out;
        EXPECT_NO_THROW(boost::json::parse(out));
    }
    const Outcome assigned =
        kcall({"x = plus(1, 2);", "y = times(x, x)", "plus(y, 1);", "ans", "size([1 2 3; 4 5 6])"});
    EXPECT_EQ(assigned.status, 0);
    EXPECT_EQ(assigned.out, "y =\n\n     9\n\nans =\n\n    10\n\nans =\n\n     2     3\n\n");
}

TEST(Kcall, WarningsErrorsAndStatuses) {
    const Outcome warned = kcall({"sqrt(-1)"});
    EXPECT_EQ(warned.status, 0);
    EXPECT_EQ(warned.err.substr(0, 38), "Warning: sqrt of a negative number is ");
    const Outcome failed =
        kcall({"inv(0)", "plus(1, 2)"});  // the first failure ends a run of arguments
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.err, "Error: inv: the inverse of 0 does not exist\n");
    EXPECT_EQ(failed.out, "");
    const Outcome session =
        kcall({}, "inv(0)\nplus(1, 2)\n");  // a session goes on, and fails at the end
    EXPECT_EQ(session.status, 1);
    EXPECT_EQ(session.out, "ans =\n\n     3\n\n");
    const Outcome json = kcall({"--json", "sqrt(-1)", "inv(0)"});
    EXPECT_NE(json.out.find(R"({"warning":"sqrt of a negative)"), std::string::npos);
    EXPECT_NE(json.out.find(R"({"error":"inv: the inverse of 0 does not exist"})"),
              std::string::npos);

    // The texts of malformed lines are ParserTest's and SessionTest's; here they fail cleanly.
    EXPECT_EQ(kcall({"round(2.5, \"sideways\")"}).status, 1);
    for (const std::string& line : {std::string("plus(1, [2 3)"), std::string(5000, '(')}) {
        const Outcome run = kcall({line});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err.substr(0, 13), "Error: column");
    }
    EXPECT_EQ(kcall({"plus(" + std::string(100000, '9') + ", 1)"}).status, 0);
    EXPECT_EQ(kcall({""}).out, "");
    EXPECT_EQ(kcall({"--threads", "0", "1"}).status, 105);  // a bad option, as CLI11 reports it
}

TEST(Kcall, ListDescribeAndExplain) {
    // The sample module's nineteen builtins, in which the lint finds nothing.
    std::istringstream list(kcall({"--list"}).out);
    std::vector<std::string> names;
    for (std::string name, module; list >> name >> module;) names.push_back(name);
    EXPECT_EQ(names.size(), 19u);
    const struct {
        std::vector<std::string> arguments;
        int status;
        const char* out;
        const char* err;
    } lints[] = {
        {{"--lint"}, 0, "lint: 19 builtins, 0 findings\n", ""},
        {{"--lint", "sample"}, 0, "lint: 19 builtins, 0 findings\n", ""},
        {{"--lint", "nothing"}, 1, "", "Error: no module named nothing is loaded\n"},
    };
    for (const auto& c : lints) {
        const Outcome linted = kcall(c.arguments);
        EXPECT_EQ(linted.status, c.status) << c.arguments.back();
        EXPECT_EQ(linted.out, c.out);
        EXPECT_EQ(linted.err, c.err);
    }
    // A folder without modules is said on stderr, and the builtins serve all the same.
    const std::string empty = testing::TempDir() + "kcall-empty." + std::to_string(::getpid());
    std::filesystem::create_directory(empty);
    const Outcome noModules = kcall({"--modules", empty, "plus(1, 2)"});
    std::filesystem::remove(empty);
    EXPECT_EQ(noModules.status, 0);
    EXPECT_NE(noModules.err.find("no module bundle here"), std::string::npos) << noModules.err;
    EXPECT_NE(kcall({"--list"}).out.find("plus  (sample)\n"), std::string::npos);
    const Outcome described = kcall({"--describe", "round"});
    EXPECT_NE(described.out.find("roundEven(double scalar, option word 'even') -> double scalar"),
              std::string::npos);
    EXPECT_NE(described.out.find("lint: nothing to report"), std::string::npos);
    EXPECT_EQ(kcall({"--describe", "nothing"}).status, 1);
    const Outcome explained = kcall({"--explain", "plus(int32(1), int32(2))"});
    EXPECT_NE(explained.out.find("1. plus(double scalar, double scalar) -> double scalar: refused: "
                                 "input 1 is int32 1x1"),
              std::string::npos);
    EXPECT_NE(
        explained.out.find("plus(int32 scalar, int32 scalar) -> int32 scalar: takes the call\n"),
        std::string::npos);
    EXPECT_NE(
        kcall({"--explain", "plus([1 2], [3 4])"}).out.find("takes the call, element by element"),
        std::string::npos);
}

}  // namespace
