// The one start of the services (tried again after a failure, once for two threads) and holders
// left unfilled by a failed lookup, with an installAndStart of this executable's own that counts
// its calls, can fail once, and registers services as a bundle would.
#include <cppmicroservices/FrameworkFactory.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <thread>

#include "ServiceDoubles.hpp"

using namespace Norvane::builtin;
using namespace servicedoubles;

namespace {

struct StartRecord {
    std::atomic<int> calls{0};
    std::atomic<bool> failNext{false};
    std::u16string directory;  // written by the one start, read after the threads joined
    std::string filter;
    std::shared_ptr<StubStringSupport> strings = std::make_shared<StubStringSupport>();
    std::shared_ptr<StubClassProvider> classes = std::make_shared<StubClassProvider>();
} record;

struct NoIdInterface {
    virtual ~NoIdInterface() = default;
};

}  // namespace

CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(NoIdInterface, "")

namespace foundation::cppmicroservices {

InstallAndStartResult installAndStart(fl::filesystem::path directory,
                                      const ::cppmicroservices::LDAPFilter& filter) {
    ++record.calls;
    record.directory = directory.text();
    record.filter = filter.ToString();
    // Long enough for a second thread to arrive while the start runs.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (record.failNext.exchange(false)) throw std::runtime_error("bundle start failed");
    registerDouble<StringSupport>(record.strings);
    registerDouble<IZOBJRegWrapper>(record.classes);
    return {};
}

}  // namespace foundation::cppmicroservices

namespace {

// The steps build on each other: a holder is filled once per process.
TEST(Doubles, ServicesStartOnceAfterAFailedStartAndFailedLookupsAreNotKept) {
    foundation::cppmicroservices::createFramework();
    builtinreg::callUpstreamModules({"any"}, [](builtinreg::IOrroObjectModuleMgr*) {});
    EXPECT_EQ(record.calls, 0) << "the upstream walk starts no bundles";

    record.failNext = true;
    EXPECT_THROW(getHeldService<StringSupport>(), std::runtime_error);
    EXPECT_EQ(record.calls, 1);

    // Two threads at the next first access: one start.
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
    EXPECT_EQ(record.calls, 2);
    EXPECT_EQ(strings, record.strings.get());
    EXPECT_EQ(classes, record.classes.get());
    EXPECT_EQ(record.directory, u"bin/linux64/builtinservices");
    EXPECT_EQ(record.filter, "(started-in=builtin2/builtin)");

    // A lookup that fails (a framework never started) leaves its holder unfilled.
    auto live =
        foundation::cppmicroservices::setFramework(std::make_shared<cppmicroservices::Framework>(
            cppmicroservices::FrameworkFactory().NewFramework()));
    EXPECT_THROW(getHeldService<IOrroObjectRegister>(), std::runtime_error);
    foundation::cppmicroservices::setFramework(live);
    const auto objects =
        registerDouble<IOrroObjectRegister>(std::make_shared<StubObjectRegister>());
    EXPECT_EQ(getHeldService<IOrroObjectRegister>(), objects);
    EXPECT_EQ(record.calls, 2);

    // Holders of other interfaces work from the header; a refused id is not cached.
    EXPECT_THROW(getHeldService<NoIdInterface>(), cppmicroservices::ServiceException);
    EXPECT_THROW(getHeldService<NoIdInterface>(), cppmicroservices::ServiceException);
    struct Unregistered {
        virtual ~Unregistered() = default;
    };
    EXPECT_EQ(getHeldService<Unregistered>(), nullptr);
}

}  // namespace
