// Statements that must not compile, which stand here where VEQ_REFUSED is defined; `check` compiles
// them. The compiler has to complain about each line that is marked, and about no other.
#include <cstdint>
#include <vector>
#include <veq/veq.hpp>

using veq::VEQNetwork;
using veq::VEQNumberArray;

void program(VEQNetwork& network, const VEQNetwork& fixedNetwork,
             const VEQNumberArray& fixedArray) {
  const std::vector<double> doubles = {0.5};
  const VEQNumberArray weights = VEQNumberArray::ofDoubles(doubles);
#ifdef VEQ_REFUSED
  // A constant array is not written to.
  fixedArray.setIntegerValue_atIndex(1, 0);  // refused
  // Nor are its elements.
  fixedArray.values<double>()[0] = 1.0;  // refused
  // A temporary array is not asked for elements that die with it.
  (void)VEQNumberArray::ofDoubles(doubles).values<double>();  // refused
  // Doubles are no indices, and are not rounded to any by accident.
  (void)VEQNumberArray::ofIndices(doubles);  // refused
  // Nor are they floats.
  (void)VEQNumberArray::ofFloats(doubles);  // refused
  // Weights are numbers.
  network.setEdgesWeightValues(veq::VEQVector2dArray());  // refused
  // A constant network is not edited.
  fixedNetwork.setEdgesWeightValues(weights);  // refused
  // A network is copied by an operation that says what is copied.
  const VEQNetwork copy(network);  // refused
  // The null marker has a name of its own.
  const veq::PropertyValue value(nullptr);  // refused
  // Agents with memory are not made without one.
  (void)veq::VEQNetworkDynamicAgentsGroup::initAtNetwork_initialVerticesIndices(  // refused
      VEQNetwork::networkWithNetwork(network), weights);
  // What an operation gives is not dropped by accident.
  network.calcDegrees();  // refused
#endif
  network.setEdgesWeightValues(weights);
  (void)fixedNetwork.calcDegrees();
  (void)fixedArray.values<double>();
}
