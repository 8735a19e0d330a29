// kcall run as a user runs it, grouped by road: literal forms, nested calls and assignments, the
// forms of the sample module's results, JSON, --list, --describe and --explain, warnings and
// errors with their exit statuses, and malformed lines, each of which must give a clear message
// and a non-zero status, never a crash.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include <boost/json/parse.hpp>

namespace {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

// Runs kcall with the arguments, and the input on its standard input if there is any.
Outcome kcall(const std::vector<std::string>& arguments, const std::string& input = "") {
    // Each test runs in its own process, in parallel with the others: the file is this process's.
    const std::string errFile = testing::TempDir() + "kcall." + std::to_string(::getpid()) + ".err";
    std::string command = std::string(KCALL_PATH);
    for (const std::string& argument : arguments) command += " " + quoted(argument);
    command = "printf '%s' " + quoted(input) + " | " + command + " 2>" + errFile;
    FILE* pipe = ::popen(command.c_str(), "r");
    std::string out;
    std::array<char, 4096> buffer{};
    while (const std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe)) out.append(buffer.data(), n);
    const int status = ::pclose(pipe);
    std::ifstream err(errFile);
    std::string errText(std::istreambuf_iterator<char>(err), {});
    std::remove(errFile.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out, errText};
}

// The numbers of a one-line --json result.
std::string jsonOf(const std::string& line) {
    const std::string out = kcall({"--json", line}).out;
    return out.substr(0, out.find('\n'));
}

// Saturating conversions, logical JSON and column-major matrices are checked by ValuesTest and
// SessionTest.
TEST(Kcall, LiteralsCallsAndAssignments) {
    const struct {
        const char* line;
        const char* json;
    } cases[] = {
        {"3", R"({"class":"double","size":[1,1],"complex":false,"data":[3E0]})"},
        {"-2.5e-3", R"({"class":"double","size":[1,1],"complex":false,"data":[-2.5E-3]})"},
        {"[Inf -Inf NaN]", R"({"class":"double","size":[1,3],"complex":false,"data":["Inf","-Inf","NaN"]})"},
        {"3+4i", R"({"class":"double","size":[1,1],"complex":true,"data":[3E0],"imag":[4E0]})"},
        {"int32(5)", R"({"class":"int32","size":[1,1],"complex":false,"data":[5]})"},
        {"[]", R"({"class":"double","size":[0,0],"complex":false,"data":[]})"},
        {"'it''s'", R"({"class":"char","size":[1,4],"complex":false,"data":"it's"})"},
        {"\"abc\"", R"({"class":"string","size":[1,1],"data":"abc"})"},
        {"plus(times(2, 3), minus(10, 4))", R"({"class":"double","size":[1,1],"complex":false,"data":[1.2E1]})"},
        {"[plus(1, 1) 3]", R"({"class":"double","size":[1,2],"complex":false,"data":[2E0,3E0]})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(jsonOf(c.line), c.json);
        EXPECT_NO_THROW(boost::json::parse(jsonOf(c.line)));
    }
    const Outcome assigned = kcall({"x = plus(1, 2);", "y = times(x, x)", "plus(y, 1);", "ans"});
    EXPECT_EQ(assigned.status, 0);
    EXPECT_EQ(assigned.out, "y =\n\n     9\n\nans =\n\n    10\n\n");
}

// One call of each form of result; the builtins' other results are checked in process, by
// tests/declare/SampleModuleTest.cpp and tests/stress.
TEST(Kcall, EachFormOfResult) {
    const struct {
        const char* line;
        const char* json;
    } cases[] = {
        {"plus([1 2], [10; 20])", R"("size":[2,2],"complex":false,"data":[1.1E1,2.1E1,1.2E1,2.2E1])"},
        {"minus(int32(-2147483647), int32(5))", R"("data":[-2147483648])"},
        {"times(single(2), single(3))", R"("class":"single")"},
        {"plus(1+2i, 3)", R"("data":[4E0],"imag":[2E0])"},
        {"sqrt([4 9])", R"("data":[2E0,3E0])"},
        {"abs([-1 2])", R"("data":[1E0,2E0])"},
        {"sum([1 2; 3 4])", R"("size":[1,2],"complex":false,"data":[4E0,6E0])"},
        {"round(-2.5)", R"("data":[-3E0])"},
        {"upper('abc')", R"("class":"char","size":[1,3],"complex":false,"data":"ABC")"},
        {"class(int8(1))", R"("data":"int8")"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        EXPECT_NE(jsonOf(c.line).find(c.json), std::string::npos) << jsonOf(c.line);
    }
    EXPECT_EQ(kcall({"size([1 2 3; 4 5 6])"}).out, "ans =\n\n     2     3\n\n");
}

TEST(Kcall, WarningsErrorsAndStatuses) {
    const Outcome warned = kcall({"sqrt(-1)"});
    EXPECT_EQ(warned.status, 0);
    EXPECT_EQ(warned.err.substr(0, 38), "Warning: sqrt of a negative number is ");
    const Outcome failed = kcall({"inv(0)", "plus(1, 2)"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.err, "Error: inv: the inverse of 0 does not exist\n");
    EXPECT_EQ(failed.out, "") << "the first failure ends a run of arguments";
    const Outcome session = kcall({}, "inv(0)\nplus(1, 2)\n");
    EXPECT_EQ(session.status, 1) << "a session goes on, and says at the end that a line failed";
    EXPECT_EQ(session.out, "ans =\n\n     3\n\n");
    const Outcome json = kcall({"--json", "sqrt(-1)", "inv(0)"});
    EXPECT_NE(json.out.find(R"({"warning":"sqrt of a negative)"), std::string::npos);
    EXPECT_NE(json.out.find(R"({"error":"inv: the inverse of 0 does not exist"})"), std::string::npos);
}

// The parser's and the session's texts for each fault are in ParserTest and SessionTest; here,
// that they reach the user with a failing status, and that deep or long lines do no harm.
TEST(Kcall, MalformedLines) {
    const struct {
        std::string line;
        const char* error;
    } cases[] = {
        {"plus(1, [2 3)", "Error: column 13: expected a blank, ',', ';' or ']'"},
        {"plus(1, 2))", "Error: column 11: expected end of line"},
        {"plus(1, 2, 3)", "Error: column 1: no variant of plus takes (double 1x1, double 1x1, double 1x1)"},
        {std::string(5000, '('), "Error: column 201: expected at most 200 levels of nesting"},
        {"plus(" + std::string(100000, '9') + ", 1)", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line.substr(0, 30));
        const Outcome run = kcall({c.line});
        if (*c.error == '\0') {
            EXPECT_EQ(run.status, 0) << run.err;
            continue;
        }
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err.substr(0, std::string(c.error).size()), c.error);
    }
    const Outcome empty = kcall({""});
    EXPECT_EQ(empty.status, 0);
    EXPECT_EQ(empty.out, "");
    EXPECT_EQ(kcall({"--threads", "0", "1"}).status, 105) << "a bad option, as CLI11 reports it";
}

TEST(Kcall, ListDescribeAndExplain) {
    EXPECT_NE(kcall({"--list"}).out.find("plus  (sample)\n"), std::string::npos);
    const Outcome described = kcall({"--describe", "round"});
    EXPECT_NE(described.out.find("roundEven(double, keldor_string<literal_flag<\"even\">>) -> double"), std::string::npos);
    EXPECT_NE(described.out.find("lint: nothing to report"), std::string::npos);
    EXPECT_EQ(kcall({"--describe", "nothing"}).status, 1);
    const Outcome explained = kcall({"--explain", "plus(int32(1), int32(2))"});
    EXPECT_NE(explained.out.find("1. plus(double, double) -> double: refused: input 1 is int32 1x1"), std::string::npos);
    EXPECT_NE(explained.out.find("plus(int32, int32) -> int32: takes the call\n"), std::string::npos);
    EXPECT_NE(kcall({"--explain", "plus([1 2], [3 4])"}).out.find("takes the call, element by element"),
              std::string::npos);
}

}  // namespace
