// Model networks.
#include <nanobind/stl/string_view.h>

#include "support.hpp"
#include "veq/models.hpp"

namespace veq::python {
namespace {

// The network that `make(options)` gives, drawn from the state or, for null, the process's
// sequence.
template <class Make>
BoundNetwork modelled(BoundRandom* random, nb::object progress, Make make) {
  Follow follow(std::move(progress));
  const Drawing drawing(random);
  ModelOptions options;
  options.random = drawing.state();
  options.progress = follow.progress();
  const nb::gil_scoped_release released;
  return BoundNetwork(make(options).value());
}

BoundNetwork gnp(std::uint64_t n, double p, bool directed, BoundRandom* random,
                 nb::object progress) {
  return modelled(random, std::move(progress),
                  [=](const ModelOptions& options) { return gnpNetwork(n, p, options, directed); });
}

BoundNetwork gnm(std::uint64_t n, std::uint64_t m, bool directed, BoundRandom* random,
                 nb::object progress) {
  return modelled(random, std::move(progress),
                  [=](const ModelOptions& options) { return gnmNetwork(n, m, options, directed); });
}

BoundNetwork barabasiAlbert(std::uint64_t n, std::uint64_t m, BoundRandom* random,
                            nb::object progress) {
  return modelled(random, std::move(progress), [=](const ModelOptions& options) {
    return barabasiAlbertNetwork(n, m, options);
  });
}

std::vector<std::uint64_t> counted(const AnyArray& array) {
  const IndexSpan span = indicesOf(array);
  std::vector<std::uint64_t> result(span.count());
  for (std::size_t i = 0; i < result.size(); ++i) result[i] = span[i];
  return result;
}

BoundNetwork configuration(const AnyArray& degrees, bool simple, BoundRandom* random,
                           nb::object progress) {
  const std::vector<std::uint64_t> all = counted(degrees);
  const DegreeLaw law = simple ? DegreeLaw::kSimple : DegreeLaw::kPairing;
  return modelled(random, std::move(progress), [&](const ModelOptions& options) {
    return configurationNetwork(all, law, options);
  });
}

BoundNetwork wattsStrogatz(std::uint64_t n, std::uint64_t k, double p, BoundRandom* random,
                           nb::object progress) {
  return modelled(random, std::move(progress), [=](const ModelOptions& options) {
    return wattsStrogatzNetwork(n, k, p, options);
  });
}

BoundNetwork lattice(const AnyArray& sizes, bool periodic, nb::object progress) {
  const std::vector<std::uint64_t> all = counted(sizes);
  return modelled(nullptr, std::move(progress), [&](const ModelOptions& options) {
    return latticeNetwork(all, periodic, options);
  });
}

BoundNetwork geometric(std::uint64_t n, double radius, unsigned dimensions, BoundRandom* random,
                       nb::object progress) {
  return modelled(random, std::move(progress), [=](const ModelOptions& options) {
    return geometricNetwork(n, radius, options, dimensions);
  });
}

BoundNetwork block(const AnyArray& sizes, const AnyArray& probabilities, bool directed,
                   BoundRandom* random, nb::object progress) {
  const std::vector<std::uint64_t> all = counted(sizes);
  const std::span shares(static_cast<const double*>(probabilities.data()), probabilities.size());
  return modelled(random, std::move(progress), [&](const ModelOptions& options) {
    return blockNetwork(all, shares, options, directed);
  });
}

BoundNetwork rewired(const BoundNetwork& bound, std::uint64_t tries, BoundRandom* random,
                     nb::object progress) {
  return modelled(random, std::move(progress), [&](const ModelOptions& options) {
    const ReadingUse use(*bound.use);
    return rewiredNetwork(bound.network, tries, options);
  });
}

BoundNetwork preferentialAttachment(std::uint64_t n, std::uint64_t degree, BoundRandom* random,
                                    nb::object progress) {
  return modelled(random, std::move(progress), [=](const ModelOptions& options) {
    return preferentialAttachmentNetwork(n, degree, options);
  });
}

BoundNetwork randomNetwork(std::uint64_t n, double degree, BoundRandom* random,
                           nb::object progress) {
  return modelled(random, std::move(progress), [=](const ModelOptions& options) {
    return uniformRandomNetwork(n, degree, options);
  });
}

}  // namespace

void bindModels(nb::module_& m) {
  const auto random = nb::arg("random").none();
  const auto progress = nb::arg("progress").none();
  m.def("gnp", &gnp, nb::arg("n"), nb::arg("p"), nb::arg("directed"), random, progress);
  m.def("gnm", &gnm, nb::arg("n"), nb::arg("m"), nb::arg("directed"), random, progress);
  m.def("barabasi_albert", &barabasiAlbert, nb::arg("n"), nb::arg("m"), random, progress);
  m.def("configuration", &configuration, nb::arg("degrees"), nb::arg("simple"), random, progress);
  m.def("watts_strogatz", &wattsStrogatz, nb::arg("n"), nb::arg("k"), nb::arg("p"), random,
        progress);
  m.def("lattice", &lattice, nb::arg("sizes"), nb::arg("periodic"), progress);
  m.def("geometric", &geometric, nb::arg("n"), nb::arg("radius"), nb::arg("dimensions"), random,
        progress);
  m.def("block", &block, nb::arg("sizes"), nb::arg("probabilities"), nb::arg("directed"), random,
        progress);
  m.def("rewired", &rewired, nb::arg("network"), nb::arg("tries"), random, progress);
  m.def("preferential_attachment", &preferentialAttachment, nb::arg("n"), nb::arg("degree"), random,
        progress);
  m.def("random_network", &randomNetwork, nb::arg("n"), nb::arg("degree"), random, progress);
}

}  // namespace veq::python
