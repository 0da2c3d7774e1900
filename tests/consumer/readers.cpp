// Reads what the core alone does not: GraphML, compressed, from a file.
#include <fstream>
#include <iostream>
#include <string>
#include <veq/readers/reading.hpp>

int main() {
  const std::string text =
      "<graphml><graph edgedefault=\"directed\"><node id=\"a\"/><node id=\"b\"/>"
      "<edge source=\"a\" target=\"b\"/></graph></graphml>";
  const veq::Reading core = veq::readNetworkText(text);
  std::cout << (core ? "read by the core" : core.error().text()) << '\n';
  const veq::Reading reading = veq::readers::readNetworkText(text);
  if (!reading) return 1;
  std::cout << reading.value().countVertices() << " vertices, " << reading.value().countEdges()
            << " edge\n";
  // The first bytes of a file of gzip, and no more of it.
  const veq::Reading cut = veq::readers::readNetworkText("\x1F\x8B\x08");
  std::cout << (cut ? "whole" : cut.error().text()) << '\n';
  return 0;
}
