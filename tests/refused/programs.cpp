// Programs that must not compile, one for each number that VEQ_REFUSED can be; `check` compiles
// them. The compiler has to complain about the line that is marked, and about none with the number
// 0.
#include <cstdint>
#include <vector>
#include <veq/veq.hpp>

using veq::VEQNetwork;
using veq::VEQNumberArray;

void program(VEQNetwork& network, const VEQNetwork& fixedNetwork,
             const VEQNumberArray& fixedArray) {
  const std::vector<double> doubles = {0.5};
  const VEQNumberArray weights = VEQNumberArray::ofDoubles(doubles);
#if VEQ_REFUSED == 1                         // A constant array is not written to.
  fixedArray.setIntegerValue_atIndex(1, 0);  // refused
#elif VEQ_REFUSED == 2                       // Nor are its elements.
  fixedArray.values<double>()[0] = 1.0;  // refused
#elif VEQ_REFUSED == 3   // A temporary array is not asked for elements that die with it.
  (void)VEQNumberArray::ofDoubles(doubles).values<double>();  // refused
#elif VEQ_REFUSED == 4   // Doubles are no indices, and are not rounded to any by accident.
  (void)VEQNumberArray::ofIndices(doubles);  // refused
#elif VEQ_REFUSED == 5   // Nor are they floats.
  (void)VEQNumberArray::ofFloats(doubles);  // refused
#elif VEQ_REFUSED == 6   // Weights are numbers.
  network.setEdgesWeightValues(veq::VEQVector2dArray());  // refused
#elif VEQ_REFUSED == 7   // A constant network is not edited.
  fixedNetwork.setEdgesWeightValues(weights);  // refused
#elif VEQ_REFUSED == 8   // A network is copied by an operation that says what is copied.
  const VEQNetwork copy(network);  // refused
#elif VEQ_REFUSED == 9   // The null marker has a name of its own.
  const veq::PropertyValue value(nullptr);  // refused
#elif VEQ_REFUSED == 10  // Agents with memory are not made without one.
  (void)veq::VEQNetworkDynamicAgentsGroup::initAtNetwork_initialVerticesIndices(  // refused
      VEQNetwork::networkWithNetwork(network), weights);
#elif VEQ_REFUSED == 11  // What an operation gives is not dropped by accident.
  network.calcDegrees();  // refused
#endif
  network.setEdgesWeightValues(weights);
  (void)fixedNetwork.calcDegrees();
  (void)fixedArray.values<double>();
}
