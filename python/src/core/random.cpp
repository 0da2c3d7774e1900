// Places in the sequence of random numbers, and the process's own sequence.
#include <nanobind/stl/optional.h>

#include "support.hpp"

namespace veq::python {
namespace {

// What f gives with the state, which no other thread may use meanwhile.
template <class F>
auto drawing(BoundRandom& random, F f) {
  const Drawing held(&random);
  return f(*held.state());
}

VEQRandomGenerator& shared() { return *VEQRandomGenerator::sharedRandomGenerator(); }

// Of a Python integer of up to 128 bits.
DrawCount drawCountOf(nb::int_ draws) {
  const nb::object high = draws >> nb::int_(64);
  const nb::object low = draws & nb::int_(UINT64_MAX);
  return {nb::cast<std::uint64_t>(high), nb::cast<std::uint64_t>(low)};
}

WordArray words(BoundRandom& random) {
  const RandomState::Words all = drawing(random, [](RandomState& state) { return state.words(); });
  return arrayOf(std::vector<std::uint32_t>(all.begin(), all.end()));
}

BoundRandom fromWords(const AnyArray& words) {
  if (words.ndim() != 1 || words.dtype() != nb::dtype<std::uint32_t>() ||
      (words.shape(0) > 1 && words.stride(0) != 1)) {
    throw std::invalid_argument("words need one contiguous dimension of uint32");
  }
  const auto* const first = static_cast<const std::uint32_t*>(words.data());
  return BoundRandom(RandomState::fromWords(std::span(first, words.shape(0))).value());
}

WordArray nextDraws(BoundRandom& random, std::size_t count) {
  std::vector<std::uint32_t> draws(count);
  {
    const Drawing held(&random);
    const nb::gil_scoped_release released;
    held.state()->nextDraws(draws);
  }
  return arrayOf(std::move(draws));
}

}  // namespace

void bindRandom(nb::module_& m) {
  nb::class_<BoundRandom>(m, "RandomState")
      .def(
          "__init__",
          [](BoundRandom* at, std::uint64_t seed) {
            new (at) BoundRandom(RandomState::seeded(seed).value());
          },
          nb::arg("seed"))
      .def("_copy",
           [](BoundRandom& random) {
             return BoundRandom(drawing(random, [](RandomState& state) { return state; }));
           })
      .def(
          "_assign",
          [](BoundRandom& random, BoundRandom& other) {
            const RandomState source = drawing(other, [](RandomState& state) { return state; });
            drawing(random, [&](RandomState& state) { return state = source; });
          },
          nb::arg("other"))
      .def(
          "_after",
          [](BoundRandom& random, nb::int_ draws) {
            const DrawCount count = drawCountOf(std::move(draws));
            return BoundRandom(
                drawing(random, [&](RandomState& state) { return state.after(count); }));
          },
          nb::arg("draws"))
      .def(
          "_substream",
          [](BoundRandom& random, std::uint64_t k) {
            return BoundRandom(
                drawing(random, [&](RandomState& state) { return state.substream(k); }));
          },
          nb::arg("k"))
      .def_prop_ro(
          "draws_left",
          [](BoundRandom& random) {
            return drawing(random, [](RandomState& state) { return state.drawsLeft(); });
          },
          "How many draws a substream has left; None for a state without end.")
      .def_prop_ro("words", &words, "The 31 words drawn last, which determine all later ones.")
      .def(
          "draw",
          [](BoundRandom& random) {
            return drawing(random, [](RandomState& state) { return state.nextDraw(); });
          },
          "The next draw, an integer from 0 to 2**31 - 1.")
      .def(
          "double",
          [](BoundRandom& random) {
            return drawing(random, [](RandomState& state) { return state.nextDouble(); });
          },
          "The next draw times 2**-31: at least 0 and below 1.")
      .def(
          "below",
          [](BoundRandom& random, std::uint64_t n) {
            return drawing(random, [n](RandomState& state) { return state.nextBelow(n); });
          },
          nb::arg("n"), "An integer from 0 to n - 1, each alike; two draws.")
      .def("draws", &nextDraws, nb::arg("count"), "The next draws, as an array.")
      .def(
          "__eq__",
          [](BoundRandom& a, nb::object b) {
            BoundRandom* other = nullptr;
            if (!nb::try_cast(b, other) || other == nullptr) return false;
            return a.state == other->state;
          },
          nb::arg("other").none());
  m.def("random_from_words", &fromWords, nb::arg("words"));

  m.def("shared_draw", [] { return shared().randomInteger(); });
  m.def("random_state", [] { return BoundRandom(shared().state()); });
  m.def(
      "set_random_state",
      [](BoundRandom& random) {
        shared().setState(drawing(random, [](RandomState& state) { return state; }));
      },
      nb::arg("state"));
}

}  // namespace veq::python
