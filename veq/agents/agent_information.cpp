#include "veq/agents/agent_information.hpp"

#include <cstdlib>

namespace veq {

VEQAgentInformation newVEQAgentInformation() { return {nullptr, false, 0}; }

void deleteVEQAgentInformation(VEQAgentInformation information) {
  std::free(information.visitedVertices);
}

}  // namespace veq
