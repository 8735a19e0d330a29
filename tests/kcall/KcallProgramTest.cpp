// kcall over the sample module as a user runs it: JSON of literals and of each form of result,
// statuses of warnings, errors, malformed lines and bad command lines, --list, --lint, --modules,
// --describe, --explain and --time; option words in either quote, the constructors and ranges,
// and several outputs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>

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
}

TEST(Kcall, ExitStatuses) {
    const struct {
        std::vector<std::string> arguments;
        int status;
    } cases[] = {
        {{"plus(1, 2)"}, 0},
        {{"--version"}, 0},
        {{"--help"}, 0},
        {{"inv(0)"}, 1},
        {{"--describe", "nothing"}, 1},
        {{"--threads", "0", "1"}, 2},
        {{"--describe"}, 2},
        {{"--nothing", "1"}, 2},
        {{"--explain", "plus(1, 2)", "--time", "plus(1, 2)"}, 2},
    };
    for (const auto& c : cases) {
        const Outcome run = kcall(c.arguments);
        EXPECT_EQ(run.status, c.status) << c.arguments.front() << "\n" << run.err;
        EXPECT_EQ(run.err.empty(), c.status != 2 && c.status != 1);
    }
}

TEST(Kcall, ListDescribeAndExplain) {
    // The sample module's builtins, in which the lint finds nothing.
    std::istringstream list(kcall({"--list"}).out);
    std::vector<std::string> names;
    for (std::string name, module; list >> name >> module;) names.push_back(name);
    const std::string all = "lint: " + std::to_string(names.size()) + " builtins, 0 findings\n";
    const struct {
        std::vector<std::string> arguments;
        int status;
        const char* out;
        const char* err;
    } lints[] = {
        {{"--lint"}, 0, all.c_str(), ""},
        {{"--lint", "--types", "sample"}, 0, all.c_str(), ""},
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
    EXPECT_EQ(kcall({"--describe", "nothing"}).status, 1);
    const Outcome explained = kcall({"--explain", "plus(int32(1), int32(2))"});
    EXPECT_NE(explained.out.find("1. plus(double scalar, double scalar) -> double scalar: refused: "
                                 "input 1 is int32 1x1, neither double scalar nor an array of it"),
              std::string::npos)
        << explained.out;
    EXPECT_NE(
        explained.out.find("plus(int32 scalar, int32 scalar) -> int32 scalar: takes the call\n"),
        std::string::npos);
    EXPECT_NE(
        kcall({"--explain", "plus([1 2], [3 4])"}).out.find("takes the call, element by element"),
        std::string::npos);
}

TEST(Kcall, TypesAsPeopleReadThemAndAsTheEngineDoes) {
    const struct {
        std::vector<std::string> arguments;
        const char* line;
    } cases[] = {
        {{"--describe", "round"}, "roundEven(double scalar, option word 'even') -> double scalar"},
        {{"--describe", "round", "--types"},
         "roundEven(double, keldor_string<literal_flag<\"even\">>) -> double"},
        {{"--describe", "sum"}, "sum(double array, any shape) -> array"},
        {{"--describe", "upper"}, "upper(string) -> string"},
        {{"--describe", "counter"}, "counter(double scalar) -> Counter object"},
        {{"--describe", "rand"}, "randSeed(option word 'seed', double scalar)   ["},
        {{"--describe", "plus"}, "plus(string, char row vector) -> string"},
        {{"--explain", "upper(int8(1))", "--types"},
         "which kaArray_of<kaChar,$Shape0:B2IsShapeRowVector,ka_full,false> does not take"},
    };
    for (const auto& c : cases) {
        const std::string out = kcall(c.arguments).out;
        EXPECT_NE(out.find(c.line), std::string::npos) << c.line << "\n" << out;
    }
}

// The numbers and size of the value that the one line gives, through --json.
struct Value {
    std::vector<std::size_t> size;
    std::vector<double> data;
    std::string error;
};
Value valueOf(const std::vector<std::string>& lines) {
    std::vector<std::string> arguments{"--json"};
    arguments.insert(arguments.end(), lines.begin(), lines.end());
    const std::string out = kcall(arguments).out;
    const boost::json::object json = boost::json::parse(out.substr(0, out.find('\n'))).as_object();
    Value value;
    if (json.contains("error")) value.error = json.at("error").as_string().c_str();
    if (json.contains("size"))
        for (const auto& d : json.at("size").as_array())
            value.size.push_back(d.to_number<std::size_t>());
    if (json.contains("data") && json.at("data").is_array())
        for (const auto& x : json.at("data").as_array())
            value.data.push_back(x.to_number<double>());
    return value;
}

TEST(Kcall, OptionWordsInEitherQuote) {
    const struct {
        const char* line;
        std::vector<double> data;
    } cases[] = {
        {"sort([3 1 2], 'descend')", {3, 2, 1}},
        {"sort([3; 1], 'ascend')", {1, 3}},
        {"round([0.5 1.5 2.5], 'even')", {0, 2, 2}},
        {"round(-2.5, 'away')", {-3}},
    };
    for (const auto& c : cases) EXPECT_EQ(valueOf({c.line}).data, c.data) << c.line;
    // A builtin that takes a char row there takes it as it is: upper's char variant, not its
    // string one.
    EXPECT_NE(kcall({"--json", "upper('abc')"}).out.find(R"("class":"char")"), std::string::npos);
    const std::string explained = kcall({"--explain", "round(2.5, 'even')"}).out;
    EXPECT_NE(
        explained.find("input 2 is 'even' (char 1x4), which option word 'away' does not take"),
        std::string::npos)
        << explained;
    EXPECT_NE(explained.find("kcall tries again with it as a string"), std::string::npos);
    EXPECT_NE(
        explained.find("roundEven(double scalar, option word 'even') -> double scalar: takes"),
        std::string::npos);
    const Outcome refused = kcall({"round(1, 'sideways')"});
    EXPECT_EQ(refused.err,
              "Error: column 1: no variant of round takes (double 1x1, 'sideways' "
              "(char 1x8)); kcall --describe round lists its variants\n");
}

TEST(Kcall, ConstructorsWithTheirShapesAndBadArguments) {
    const struct {
        const char* line;
        std::vector<std::size_t> size;
        double first;  // and every element
    } shapes[] = {
        {"zeros()", {1, 1}, 0},          {"zeros(2)", {2, 2}, 0},
        {"zeros(2, 3)", {2, 3}, 0},      {"ones(2, 3, 4)", {2, 3, 4}, 1},
        {"ones([2 1 3])", {2, 1, 3}, 1}, {"ones(0, 3)", {0, 3}, 0},
        {"zeros(2, 1, 1)", {2, 1}, 0},
    };
    for (const auto& c : shapes) {
        const Value value = valueOf({c.line});
        EXPECT_EQ(value.size, c.size) << c.line;
        for (const double x : value.data) EXPECT_EQ(x, c.first) << c.line;
    }
    // rand: in [0, 1), the same numbers in each run and after the same seed, others after another.
    const Value first = valueOf({"rand(1, 1000)"});
    ASSERT_EQ(first.data.size(), 1000u);
    EXPECT_TRUE(std::all_of(first.data.begin(), first.data.end(),
                            [](double x) { return x >= 0 && x < 1; }));
    EXPECT_EQ(valueOf({"rand(1, 1000)"}).data, first.data);
    EXPECT_EQ(valueOf({"rand(3);", "rand(\"seed\", 0);", "rand(1, 1000)"}).data, first.data);
    EXPECT_NE(valueOf({"rand('seed', 7);", "rand(1, 3)"}).data, valueOf({"rand(1, 3)"}).data);

    const struct {
        const char* line;
        const char* error;
    } refused[] = {
        {"zeros(-1)", "zeros: sizes are whole numbers of 0 or more, not -1"},
        {"ones(2, 1.5)", "ones: sizes are whole numbers of 0 or more, not 1.5"},
        {"rand(NaN)", "rand: sizes are whole numbers of 0 or more, not NaN"},
        {"zeros(1e6, 1e6)",
         "zeros: an array of 1e+12 elements needs more memory than this machine has"},
        {"rand('seed', -1)", "rand: a seed is a whole number from 0 to 2^53, not -1"},
        {"rand(\"seed\", 0.5)", "rand: a seed is a whole number from 0 to 2^53, not 0.5"},
        {"zeros(int8(2))", "column 1: no variant of zeros takes (int8 1x1)"},
    };
    for (const auto& c : refused)
        EXPECT_THAT(valueOf({c.line}).error, testing::StartsWith(c.error));
}

TEST(Kcall, RangesAtTheirEdges) {
    const struct {
        const char* line;
        std::vector<double> data;
    } cases[] = {
        {"1:4", {1, 2, 3, 4}},
        {"5:-2:0", {5, 3, 1}},
        {"4:1", {}},
        {"1:-1:2", {}},
        {"2:2", {2}},
        {"1:Inf:5", {1}},
        {"0:0.3:1", {0, 0.3, 0.6, 0.9}},
        {"-1:-0.5:-2", {-1, -1.5, -2}},
        {"[0:2 2 : -1 : 1; 1:5]", {0, 1, 1, 2, 2, 3, 2, 4, 1, 5}},
    };
    for (const auto& c : cases) {
        EXPECT_THAT(valueOf({c.line}).data, testing::Pointwise(testing::DoubleNear(1e-15), c.data))
            << c.line;
    }
    // 1-by-n, and 1-by-0 when empty; the end point without drift.
    EXPECT_EQ(valueOf({"3:1"}).size, (std::vector<std::size_t>{1, 0}));
    for (const auto& [line, count, last] :
         {std::tuple("0:0.1:1", 11u, 1.0), std::tuple("0:0.1:0.3", 4u, 0.3),
          std::tuple("1:-0.1:0", 11u, 0.0), std::tuple("0:0.01:10", 1001u, 10.0)}) {
        const Value value = valueOf({line});
        ASSERT_EQ(value.data.size(), count) << line;
        EXPECT_EQ(value.data.back(), last) << line;
    }
    const struct {
        const char* line;
        const char* error;
    } refused[] = {
        {"1:0:3", "colon: the step of a range cannot be 0"},
        {"1:Inf", "colon: a range 1:1:Inf has no end"},
        {"NaN:3", "colon: a range cannot start, step or end at NaN"},
        {"1:1e20", "colon: an array of 1e+20 elements needs more memory"},
    };
    for (const auto& c : refused)
        EXPECT_THAT(valueOf({c.line}).error, testing::StartsWith(c.error));
}

TEST(Kcall, SeveralOutputs) {
    EXPECT_EQ(kcall({"[r, c] = size(ones(2, 3))", "[~, c] = size(zeros(4, 5));", "c"}).out,
              "r =\n\n     2\n\nc =\n\n     3\n\nans =\n\n     5\n\n");
    EXPECT_EQ(valueOf({"[r c p] = size(ones([2 3 4 5]));", "[r c p]"}).data,
              (std::vector<double>{2, 3, 20}));
    const struct {
        const char* line;
        const char* error;
    } refused[] = {
        {"[a, b] = plus(1, 2)",
         "column 10: too many names: plus gives at most 1 output, and 2 were asked for"},
        {"[a, b] = class(1)", "column 10: too many names: class gives fewer than 2 outputs here"},
        {"[a, b] = int8(1)",
         "column 10: too many names: int8 gives one output, and 2 were asked for"},
        {"[a, b] = [1 2]", "column 10: 2 names need a call, which can give as many outputs"},
    };
    for (const auto& c : refused) {
        // A failed line assigns nothing: a keeps its value.
        const Outcome run = kcall({}, std::string("a = 7;\n") + c.line + "\na\n");
        EXPECT_EQ(run.err, std::string("Error: ") + c.error + "\n");
        EXPECT_EQ(run.out, "ans =\n\n     7\n\n");
    }
}

TEST(Kcall, TimesEachCallOfALine) {
    const Outcome scalar = kcall({"--time", "plus(1, 2)"});
    EXPECT_EQ(scalar.status, 0);
    const std::string shown = "ans =\n\n     3\n\ntime: plus(double 1x1, double 1x1): ";
    EXPECT_EQ(scalar.out.substr(0, shown.size()), shown);
    EXPECT_NE(scalar.out.find(" per call (median of "), std::string::npos) << scalar.out;
    // Lines beside --time set up; the inner call is timed before the outer.
    const Outcome nested = kcall({"--json", "x = ones(1, 100000);", "--time", "sum(plus(x, 1))"});
    EXPECT_EQ(nested.status, 0);
    std::istringstream lines(nested.out);
    std::vector<std::string> calls;
    for (std::string line; std::getline(lines, line);) {
        const boost::json::object json = boost::json::parse(line).as_object();
        if (json.contains("time")) {
            calls.push_back(json.at("time").at("call").as_string().c_str());
            EXPECT_GT(json.at("time").at("seconds").to_number<double>(), 0);
        }
    }
    EXPECT_EQ(calls, (std::vector<std::string>{"plus(double 1x100000, double 1x1)",
                                               "sum(double 1x100000)"}));
}

}  // namespace
