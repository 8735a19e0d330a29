// FrameworkFactory: makes a new, not yet started framework.
#pragma once

#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/Framework.h>

namespace cppmicroservices {

using FrameworkConfiguration = AnyMap;

class FrameworkFactory {
public:
    Framework NewFramework(const FrameworkConfiguration& configuration = {});
};

}  // namespace cppmicroservices
