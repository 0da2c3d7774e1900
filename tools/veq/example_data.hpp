/// \file
/// The networks that come with the program.
#pragma once

#include <string>

namespace veq::tool {

/// The path of the network that a plain name without a suffix stands for, as "karate"; empty where
/// there is a file of that name, or no such network.
[[nodiscard]] std::string exampleNetwork(const std::string& name);

}  // namespace veq::tool
