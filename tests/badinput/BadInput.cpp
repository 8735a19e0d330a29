// The process of the bad-input tables: its framework and modules, the runner of a table, and the
// count of the rows tried, printed when the last table is done.
#include "BadInput.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <memory>
#include <stdexcept>

#include <boost/variant/get.hpp>

#include <builtin/services/BuiltinServices.hpp>
#include <fl/diag.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include "EngineEnvironment.hpp"
#include "ModuleHost.hpp"

namespace badinput {

namespace {

std::string nameOf(const std::type_info& type) {
    return foundation::core::diag::detail::demangle_typeid_name(type.name(), false);
}

class Process final : public ::testing::Environment {
public:
    void SetUp() override { directory_ = testsupport::startModules(); }
    void TearDown() override {
        directory_.reset();
        int total = 0;
        std::string areas;
        for (const auto& [area, rows] : tried_) {
            total += rows;
            areas += (areas.empty() ? "" : ", ") + area + " " + std::to_string(rows);
        }
        std::printf("bad inputs tried: %d (%s)\n", total, areas.c_str());
    }

    std::unique_ptr<declare::ModuleDirectory> directory_;
    std::map<std::string, int> tried_;
};

Process* const process = static_cast<Process*>(::testing::AddGlobalTestEnvironment(new Process));

}  // namespace

void runTable(const std::string& area, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(area + ": " + row.input);
        ++process->tried_[area];
        const std::size_t live = ka::liveArrayCount();
        try {
            row.feed();
            if (row.expected) {
                ADD_FAILURE() << "taken, but " << nameOf(*row.expected->type) << " \""
                              << row.expected->message << "\" was expected";
            }
        } catch (const std::exception& e) {
            if (!row.expected) {
                ADD_FAILURE() << "refused with " << nameOf(typeid(e)) << " \"" << e.what() << "\"";
            } else {
                EXPECT_TRUE(row.expected->isA(e))
                    << nameOf(typeid(e)) << " is no " << nameOf(*row.expected->type) << ": "
                    << e.what();
                EXPECT_EQ(e.what(), row.expected->message);
            }
        } catch (...) {
            ADD_FAILURE() << "refused with something that is no std::exception";
        }
        EXPECT_EQ(ka::liveArrayCount(), live) << "arrays left alive or destroyed twice";
    }
}

const declare::ModuleDirectory& directory() {
    return *process->directory_;
}

const BuiltinFcn& builtin(const char* name) {
    const BuiltinFcn* fcn = directory().find(name);
    if (fcn == nullptr) throw std::logic_error(std::string("the sample module has no ") + name);
    return *fcn;
}

void call(const char* name, std::vector<ka::ArrayPtr> arguments, int nlhs,
          std::function<void(const kaArray_tag*)> check) {
    std::vector<kaArray_tag*> prhs;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> before;  // count and flags
    for (const ka::ArrayPtr& a : arguments) {
        prhs.push_back(a.get());
        before.emplace_back(a ? a->refCount : 0, a ? a->flags : 0);
    }
    const auto unchanged = [&] {
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const auto now = arguments[i]
                                 ? std::make_pair(arguments[i]->refCount, arguments[i]->flags)
                                 : std::make_pair(0u, 0u);
            EXPECT_EQ(now, before[i]) << "argument " << i << ": count and flags";
        }
    };
    kaArray_tag* plhs[2] = {nullptr, nullptr};
    try {
        builtin(name).invoke(nlhs, plhs, static_cast<int>(prhs.size()), prhs.data(),
                             BuiltinFcn::VariantsToConsider::InvokeNoOrro);
    } catch (...) {
        unchanged();
        EXPECT_EQ(plhs[0], nullptr) << "a refused call filled plhs";
        throw;
    }
    unchanged();
    const ka::ArrayPtr result(plhs[0]);
    if (check) check(result.get());
}

namespace {

const BuiltinVariant& variantOf(const char* name, const std::vector<std::string>& inputTypes) {
    const VariantArray all = builtin(name).getAllVariants();
    const auto matches = [](const std::string& type, const std::string& pattern) {
        return pattern.ends_with('*') ? type.starts_with(pattern.substr(0, pattern.size() - 1))
                                      : type == pattern;
    };
    for (const BuiltinVariant* v = all.first; v != all.first + all.second; ++v) {
        if (std::ranges::equal(v->inputTypes, inputTypes, matches)) return *v;
    }
    throw std::logic_error(std::string("no variant of ") + name + " takes those types");
}

}  // namespace

void engineCall(const char* name, const std::vector<std::string>& inputTypes,
                std::vector<Argument> arguments) {
    const BuiltinVariant& variant = variantOf(name, inputTypes);
    ParameterList parameters;
    for (Argument& a : arguments) {
        if (a.array) {
            matrix::takeReference(a.array.get());
            parameters.emplace_back(a.array.get());
        } else {
            parameters.push_back(a.value);
        }
    }
    const auto referencesGivenBack = [&] {
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            if (arguments[i].array) {
                EXPECT_EQ(arguments[i].array->refCount, 1u) << "argument " << i;
            }
        }
    };
    testsupport::EngineEnvironment environment;
    bool pending = false;
    auto* descriptor = const_cast<OrroFunctionDescriptor*>(&variant.functionDescriptor);
    Parameter result;
    try {
        result = descriptor->typedEntry(descriptor, &environment, pending, parameters);
        if (pending && environment.error) std::rethrow_exception(environment.error);
    } catch (...) {
        referencesGivenBack();
        throw;
    }
    if (kaArray_tag* const* array = boost::get<kaArray_tag*>(&result))
        matrix::releaseReference(*array);
    referencesGivenBack();
}

ka::ArrayPtr string(std::u16string text) {
    const std::size_t dims[] = {1, 1};
    return getHeldService<StringSupport>()->createString(dims, {std::move(text)});
}

}  // namespace badinput
