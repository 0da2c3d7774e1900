#include "veq/base/internal/control_groups.hpp"

#include <cstddef>
#include <fstream>

namespace veq::internal {
namespace {

void addWithThoseAbove(std::vector<std::string>& groups, const std::string& mount,
                       std::string group) {
  for (;;) {
    groups.push_back(mount + group);
    const std::size_t end = group.rfind('/');
    if (end == std::string::npos) return;
    group.resize(end);
  }
}

}  // namespace

std::vector<std::string> controlGroups(const std::string& list, const std::string& mount,
                                       const std::string& controller) {
  std::vector<std::string> groups;
  const std::string named = std::string(",").append(controller).append(",");
  std::ifstream lines(list);
  // A line is "number:controllers:group"; version 2 has one hierarchy, without names of
  // controllers.
  for (std::string line; std::getline(lines, line);) {
    const std::size_t first = line.find(':');
    const std::size_t second = first == std::string::npos ? first : line.find(':', first + 1);
    if (second == std::string::npos) continue;
    const std::string controllers = ',' + line.substr(first + 1, second - first - 1) + ',';
    const std::string group = line.substr(second + 1);
    if (controllers == ",,") addWithThoseAbove(groups, mount, group);
    if (controllers.find(named) != std::string::npos) {
      addWithThoseAbove(groups, mount + '/' + controller, group);
    }
  }
  return groups;
}

}  // namespace veq::internal
