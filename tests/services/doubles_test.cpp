// This executable exports its own installAndStart, which the library binds to instead of the
// framework's: it counts its calls, can fail once, and registers services as a bundle would.
// The tests build on each other (a holder is filled once per process): keep their order.
#include <cppmicroservices/FrameworkFactory.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <mutex>
#include <thread>

#include "ServiceDoubles.hpp"

using namespace Norvane::builtin;
using namespace servicedoubles;

namespace {

struct StartRecord {
    std::atomic<int> calls{0};
    std::atomic<bool> failNext{false};
    std::mutex mutex;
    std::u16string directory;
    std::string filter;
    std::shared_ptr<StubStringSupport> strings = std::make_shared<StubStringSupport>();
    std::shared_ptr<StubClassProvider> classes = std::make_shared<StubClassProvider>();
};

StartRecord& record() {
    static StartRecord instance;
    return instance;
}

struct NoIdInterface {
    virtual ~NoIdInterface() = default;
};

}  // namespace

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(NoIdInterface, "")

namespace foundation::cppmicroservices {

InstallAndStartResult installAndStart(fl::filesystem::path directory, const ::cppmicroservices::LDAPFilter& filter) {
    auto& r = record();
    ++r.calls;
    {
        std::lock_guard lock(r.mutex);
        r.directory = directory.text();
        r.filter = filter.ToString();
    }
    // Long enough for a second thread to arrive while the start runs.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (r.failNext.exchange(false)) {
        throw std::runtime_error("bundle start failed");
    }
    registerDouble<StringSupport>(r.strings);
    registerDouble<IZOBJRegWrapper>(r.classes);
    return {};
}

}  // namespace foundation::cppmicroservices

namespace {

class Doubles : public ::testing::Test {
protected:
    static void SetUpTestSuite() { foundation::cppmicroservices::createFramework(); }
};

TEST_F(Doubles, UpstreamWalkStartsNoBundles) {
    builtinreg::callUpstreamModules({"any"}, [](builtinreg::IOrroObjectModuleMgr*) {});
    EXPECT_EQ(record().calls, 0);
}

TEST_F(Doubles, AFailedStartIsTriedAgain) {
    record().failNext = true;
    EXPECT_THROW(getHeldService<StringSupport>(), std::runtime_error);
    EXPECT_EQ(record().calls, 1);
}

TEST_F(Doubles, TwoThreadsAtTheFirstAccessStartOnce) {
    std::latch ready(2);
    const StringSupport* strings = nullptr;
    const IZOBJRegWrapper* classes = nullptr;
    std::thread first([&] {
        ready.arrive_and_wait();
        strings = getHeldService<StringSupport>().get();
    });
    std::thread second([&] {
        ready.arrive_and_wait();
        classes = getHeldService<IZOBJRegWrapper>().get();
    });
    first.join();
    second.join();

    EXPECT_EQ(record().calls, 2) << "one failed start before, one start now";
    EXPECT_EQ(strings, record().strings.get());
    EXPECT_EQ(classes, record().classes.get());
    std::lock_guard lock(record().mutex);
    EXPECT_EQ(record().directory, u"bin/linux64/builtinservices");
    EXPECT_EQ(record().filter, "(started-in=builtin2/builtin)");
}

TEST_F(Doubles, AFailedLookupLeavesTheHolderUnfilled) {
    auto live = foundation::cppmicroservices::setFramework(
        std::make_shared<cppmicroservices::Framework>(cppmicroservices::FrameworkFactory().NewFramework()));
    EXPECT_THROW(getHeldService<IOrroObjectRegister>(), std::runtime_error);  // a framework never started
    foundation::cppmicroservices::setFramework(live);

    const auto objects = registerDouble<IOrroObjectRegister>(std::make_shared<StubObjectRegister>());
    EXPECT_EQ(getHeldService<IOrroObjectRegister>(), objects);
    EXPECT_EQ(record().calls, 2);
}

TEST_F(Doubles, HoldersOfOtherInterfacesWorkFromTheHeader) {
    EXPECT_THROW(getHeldService<NoIdInterface>(), cppmicroservices::ServiceException);
    EXPECT_THROW(getHeldService<NoIdInterface>(), cppmicroservices::ServiceException);  // not cached
    struct Unregistered {
        virtual ~Unregistered() = default;
    };
    EXPECT_EQ(getHeldService<Unregistered>(), nullptr);
}

}  // namespace
