// The service framework: interface ids, lookup order and filters, a stopped framework, and what
// LDAP filters match. Refusals of manifests and filters, and the escapes of the filter builder,
// are checked where the library uses them (tests/badinput, tests/services/empty_framework_test).
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceException.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace cppmicroservices;

namespace {

struct IAlpha {
    virtual ~IAlpha() = default;
    virtual int value() const = 0;
};
struct IBeta {
    virtual ~IBeta() = default;
};
struct NoId {
    virtual ~NoId() = default;
};
struct Alpha final : IAlpha, IBeta {
    explicit Alpha(int v) : v_(v) {}
    int value() const override { return v_; }
    int v_;
};

}  // namespace

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(NoId, "")

namespace {

template <class F>
std::string errorOf(F&& f) {
    try {
        f();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no exception";
}

class FrameworkTest : public ::testing::Test {
protected:
    void SetUp() override { framework_.Start(); }
    BundleContext context() { return framework_.GetBundleContext(); }
    std::vector<int> values(const std::string& filter = {}) {
        std::vector<int> result;
        for (const auto& reference : context().GetServiceReferences<IAlpha>(filter))
            result.push_back(context().GetServiceObjects(reference).GetService()->value());
        return result;
    }
    Framework framework_ = FrameworkFactory().NewFramework();
};

TEST_F(FrameworkTest, InterfaceIdIsTheDemangledNameAndIsRequired) {
    auto registration = context().RegisterService<IAlpha, IBeta>(std::make_shared<Alpha>(1));
    EXPECT_EQ(registration.GetReference().GetInterfaceId(), "(anonymous namespace)::IAlpha");
    EXPECT_EQ(
        any_cast<std::vector<std::string>>(registration.GetReference().GetProperty("objectclass")),
        (std::vector<std::string>{"(anonymous namespace)::IAlpha",
                                  "(anonymous namespace)::IBeta"}));
    EXPECT_EQ(context().GetServiceReferences<IBeta>().size(), 1u);
    EXPECT_EQ(
        errorOf([&] { context().RegisterService<NoId>(std::make_shared<NoId>()); }),
        "The service interface class has no CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro");
    EXPECT_THROW((void)context().GetServiceReferences<NoId>(), ServiceException);
}

TEST_F(FrameworkTest, LookupOrdersByRankingThenAgeAndFilters) {
    context().RegisterService<IAlpha>(std::make_shared<Alpha>(1), {{"kind", std::string("x")}});
    context().RegisterService<IAlpha>(std::make_shared<Alpha>(2), {{"service.ranking", 5}});
    context().RegisterService<IAlpha>(std::make_shared<Alpha>(3), {{"kind", std::string("x")}});
    EXPECT_EQ(values(), (std::vector<int>{2, 1, 3}));
    EXPECT_EQ(values("(kind=x)"), (std::vector<int>{1, 3}));
    EXPECT_THROW(context().RegisterService<IAlpha>(std::make_shared<Alpha>(4),
                                                   {{"service.ranking", std::string("high")}}),
                 std::invalid_argument);
}

TEST_F(FrameworkTest, StoppedFrameworkInvalidatesItsContext) {
    auto kept = context();
    auto service = std::make_shared<Alpha>(1);
    kept.RegisterService<IAlpha>(service);
    framework_.Stop();
    EXPECT_FALSE(kept);
    EXPECT_FALSE(framework_.GetBundleContext());
    EXPECT_EQ(errorOf([&] { (void)kept.GetServiceReferences<IAlpha>(); }),
              "The bundle context is no longer valid");
    EXPECT_EQ(service.use_count(), 1) << "the registry still holds the service";
}

TEST(LDAPFilter, Matches) {
    const AnyMap properties{
        {"name", std::string("builtin2/builtin")},
        {"Count", 3},
        {"enabled", true},
        {"objectclass", std::vector<std::string>{"A::I", "B::J"}},
        {"odd", std::string("a(b)*c\\")},
    };
    // Values keep their case, names do not; a list matches by any element.
    const std::pair<std::string, bool> cases[] = {
        {"(name=builtin2/builtin)", true},
        {"(name=builtin2/Builtin)", false},
        {"(NAME=builtin2/builtin)", true},
        {"(objectclass=B::J)", true},
        {"(missing=*)", false},
        {"(odd=a\\28b\\29\\2ac\\5c)", true},
        {"(&(|(count=4)(!(missing=*)))(!(&(enabled=true)(ratio=1))))", true},
        {"(|(&(count=3)(!(enabled=true)))(!(|(name=*)(count=3))))", false},
        {" ( & (count=3) (enabled=TRUE) ) ", true},
    };
    for (const auto& [text, expected] : cases) {
        const LDAPFilter filter(text);
        EXPECT_EQ(filter.Match(properties), expected) << text;
        EXPECT_EQ(filter.ToString(), text);
    }
    EXPECT_TRUE(LDAPFilter().Match(AnyMap{}));  // the default matches everything
}

}  // namespace
