#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
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
struct NoId { virtual ~NoId() = default; };

struct Alpha final : IAlpha, IBeta {
    explicit Alpha(int v) : v_(v) {}
    int value() const override { return v_; }
    int v_;
};

}  // namespace

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(NoId, "")

namespace {

class FrameworkTest : public ::testing::Test {
protected:
    void SetUp() override { framework_.Start(); }

    std::vector<int> values(const std::string& filter = {}) {
        std::vector<int> result;
        for (const auto& reference : context().GetServiceReferences<IAlpha>(filter)) {
            result.push_back(context().GetServiceObjects(reference).GetService()->value());
        }
        return result;
    }

    BundleContext context() { return framework_.GetBundleContext(); }

    Framework framework_ = FrameworkFactory().NewFramework();
};

TEST_F(FrameworkTest, InterfaceIdIsTheDemangledNameAndIsRequired) {
    EXPECT_EQ(ServiceInterfaceId<IAlpha>(), "(anonymous namespace)::IAlpha");
    auto registration = context().RegisterService<IAlpha, IBeta>(std::make_shared<Alpha>(1));
    const auto reference = registration.GetReference();
    EXPECT_EQ(reference.GetInterfaceId(), "(anonymous namespace)::IAlpha");
    EXPECT_EQ(any_cast<std::vector<std::string>>(reference.GetProperty("objectclass")),
              (std::vector<std::string>{"(anonymous namespace)::IAlpha", "(anonymous namespace)::IBeta"}));
    EXPECT_EQ(context().GetServiceReferences<IBeta>().size(), 1u);
    try {
        context().RegisterService<NoId>(std::make_shared<NoId>());
        FAIL() << "no exception";
    } catch (const ServiceException& error) {
        EXPECT_STREQ(error.what(), "The service interface class has no CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro");
    }
    EXPECT_THROW((void)context().GetServiceReferences<NoId>(), ServiceException);
}

TEST_F(FrameworkTest, LookupOrdersByRankingThenAgeAndFilters) {
    context().RegisterService<IAlpha>(std::make_shared<Alpha>(1), {{"kind", std::string("x")}});
    context().RegisterService<IAlpha>(std::make_shared<Alpha>(2), {{"service.ranking", 5}});
    context().RegisterService<IAlpha>(std::make_shared<Alpha>(3), {{"kind", std::string("x")}});
    EXPECT_EQ(values(), (std::vector<int>{2, 1, 3}));
    EXPECT_EQ(values("(kind=x)"), (std::vector<int>{1, 3}));
    EXPECT_THROW(values("(kind=x"), std::invalid_argument);
    EXPECT_THROW(context().RegisterService<IAlpha>(std::make_shared<Alpha>(4), {{"service.ranking", std::string("high")}}),
                 std::invalid_argument);
}

TEST_F(FrameworkTest, StoppedFrameworkInvalidatesItsContext) {
    auto kept = context();
    auto service = std::make_shared<Alpha>(1);
    auto registration = kept.RegisterService<IAlpha>(service);
    framework_.Stop();
    EXPECT_FALSE(kept);
    EXPECT_FALSE(framework_.GetBundleContext());
    try {
        (void)kept.GetServiceReferences<IAlpha>();
        FAIL() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "The bundle context is no longer valid");
    }
    EXPECT_EQ(service.use_count(), 1) << "the registry still holds the service";
}

}  // namespace
