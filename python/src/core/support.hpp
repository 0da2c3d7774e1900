// What all rooms of the binding share: arrays and their owners, the interpreter's lock, what may
// happen to a network at once, progress and interrupts.
#pragma once

#include <nanobind/nanobind.h>
#include <nanobind/ndarray.h>

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/network.hpp"
#include "veq/random.hpp"
#include "veq/walkers.hpp"

namespace veq::python {

namespace nb = nanobind;

/// Arrays that come in: whatever NumPy made of the caller's data. The Python side has seen to it
/// that they have one dimension and indices 32 or 64 bits; strides may be any.
using AnyArray = nb::ndarray<nb::ro, nb::device::cpu>;

/// The indices of an array, which must outlive them.
[[nodiscard]] IndexSpan indicesOf(const AnyArray& array);
/// The floats or doubles of a contiguous array; none at all for None.
[[nodiscard]] NumberSpan numbersOf(const std::optional<AnyArray>& array);

/// Arrays that go out, by what the stubs call them.
#define VEQ_ARRAY_TYPE(Type, text)                                        \
  class Type : public nb::object {                                        \
    NB_OBJECT_DEFAULT(Type, nb::object, text, isAnything)                 \
    Type(nb::object array) : nb::object(std::move(array)) {} /* NOLINT */ \
  }
inline bool isAnything(PyObject* /*object*/) { return true; }
VEQ_ARRAY_TYPE(IntArray, "numpy.typing.NDArray[numpy.int64]");
VEQ_ARRAY_TYPE(WordArray, "numpy.typing.NDArray[numpy.uint32]");
VEQ_ARRAY_TYPE(FloatArray, "numpy.typing.NDArray[numpy.float64]");
VEQ_ARRAY_TYPE(PointArray, "numpy.typing.NDArray[numpy.float64]");
VEQ_ARRAY_TYPE(WeightArray, "numpy.typing.NDArray[numpy.float32]");
VEQ_ARRAY_TYPE(IndexArray,
               "numpy.typing.NDArray[numpy.uint32] | numpy.typing.NDArray[numpy.uint64]");
VEQ_ARRAY_TYPE(ListArray,
               "numpy.typing.NDArray[numpy.uint32] | numpy.typing.NDArray[numpy.uint64] | "
               "numpy.typing.NDArray[numpy.int64]");
VEQ_ARRAY_TYPE(ColumnArray, "numpy.typing.NDArray[typing.Any] | list[typing.Any]");
#undef VEQ_ARRAY_TYPE

/// What an array of copies of T is to users.
template <class T>
struct CopyOf;
template <>
struct CopyOf<std::uint64_t> {
  using Type = IntArray;
};
template <>
struct CopyOf<std::uint32_t> {
  using Type = WordArray;
};
template <>
struct CopyOf<float> {
  using Type = WeightArray;
};
template <>
struct CopyOf<double> {
  using Type = FloatArray;
};

template <class... Parts>
using Tuple = nb::typed<nb::tuple, Parts...>;
using Texts = nb::typed<nb::list, nb::str>;

/// An array over memory that `keeper` keeps, which is moved into the array's owner.
template <class T, class Keeper>
[[nodiscard]] nb::object arrayOver(T* data, std::initializer_list<std::size_t> shape,
                                   Keeper keeper) {
  static std::remove_const_t<T> nothing{};
  auto kept = std::make_unique<Keeper>(std::move(keeper));
  nb::capsule owner(kept.get(), [](void* held) noexcept { delete static_cast<Keeper*>(held); });
  kept.release();
  nb::object array = nb::cast(
      nb::ndarray<nb::numpy, T>(data ? data : &nothing, shape.size(), shape.begin(), owner));
  // What comes by way of a buffer has the type of a long long, which is another one than NumPy's
  // integer of the same size, and shows itself as such.
  if constexpr (std::is_integral_v<T> && sizeof(T) == 8) {
    return array.attr("view")(std::is_signed_v<T> ? "int64" : "uint64");
  }
  return array;
}

/// A read-only array over a span.
template <class Array = IndexArray, class T, class Keeper>
[[nodiscard]] Array viewOf(std::span<const T> values, Keeper keeper) {
  return arrayOver<const T>(values.data(), {values.size()}, std::move(keeper));
}

/// An array that owns the vector. Unsigned integers become signed ones, which NumPy's own indices
/// are; all bits set, the library's "never" and "unreachable", is -1 then.
template <class T>
[[nodiscard]] typename CopyOf<T>::Type arrayOf(std::vector<T> values) {
  using Out = std::conditional_t<std::is_same_v<T, std::uint64_t>, std::int64_t, T>;
  auto kept = std::make_unique<std::vector<T>>(std::move(values));
  auto* const data = reinterpret_cast<Out*>(kept->data());
  const std::size_t count = kept->size();
  return arrayOver<Out>(data, {count}, std::move(kept));
}

/// Texts are any bytes; those that are no UTF-8 come as lone surrogates, and go back as they were.
[[nodiscard]] nb::str textOf(std::string_view bytes);
[[nodiscard]] std::string bytesOf(nb::handle text);
[[nodiscard]] Texts textsOf(const std::vector<std::string>& texts);
[[nodiscard]] std::vector<std::string> stringsOf(const nb::list& texts);

/// What may happen to one network, or one group of agents, at once: any number of readers or one
/// edit. Nobody waits for the readers, among which may be a walk whose observer is Python code; an
/// edit is waited for, as it never asks for the interpreter's lock before it is done.
class Use {
 public:
  void beginReading() {
    for (std::int64_t now = state_.load(); !enter(now);) {
      if (now < 0) state_.wait(now);
      now = state_.load();
    }
  }
  [[nodiscard]] bool tryReading() {
    std::int64_t now = state_.load();
    while (now >= 0) {
      if (enter(now)) return true;
    }
    return false;
  }
  void endReading() { state_.fetch_sub(1); }
  [[nodiscard]] bool tryEditing() {
    std::int64_t nobody = 0;
    return state_.compare_exchange_strong(nobody, -1);
  }
  void endEditing() {
    state_.store(0);
    state_.notify_all();
  }

 private:
  bool enter(std::int64_t& now) { return now >= 0 && state_.compare_exchange_weak(now, now + 1); }

  std::atomic<std::int64_t> state_ = 0;
};

/// Reads for as long as it lives. Whoever calls holds the Python object, and with it the use.
class ReadingUse {
 public:
  explicit ReadingUse(Use& use) : use_(use) { use_.beginReading(); }
  /// What cannot wait throws.
  ReadingUse(Use& use, const char* refusal) : use_(use) {
    if (!use_.tryReading()) throw std::runtime_error(refusal);
  }
  ReadingUse(const ReadingUse&) = delete;
  ReadingUse& operator=(const ReadingUse&) = delete;
  ~ReadingUse() { use_.endReading(); }

 private:
  Use& use_;
};

/// Edits for as long as it lives; std::runtime_error where somebody reads or edits.
class EditingUse {
 public:
  EditingUse(Use& use, const char* refusal) : use_(use) {
    if (!use_.tryEditing()) throw std::runtime_error(refusal);
  }
  EditingUse(const EditingUse&) = delete;
  EditingUse& operator=(const EditingUse&) = delete;
  ~EditingUse() { use_.endEditing(); }

 private:
  Use& use_;
};

/// The network of a Python object. Copies are the same network.
struct BoundNetwork {
  explicit BoundNetwork(Network made) : network(std::move(made)), use(std::make_shared<Use>()) {}

  Network network;
  std::shared_ptr<Use> use;
};

/// A network that never changes.
struct BoundWalkNetwork {
  WalkNetwork network;
};

/// What f(network) gives, computed without the interpreter's lock.
template <class F>
auto reading(const BoundNetwork& bound, F&& f) {
  const nb::gil_scoped_release released;
  const ReadingUse use(*bound.use);
  return f(bound.network);
}

/// The same for what takes no longer than giving the lock away would.
template <class F>
auto glancing(const BoundNetwork& bound, F&& f) {
  const ReadingUse use(*bound.use);
  return f(bound.network);
}

/// The getter of a property that is as good as a number: called by the type's own slot, which takes
/// a third of the time of a function that nanobind looks for the right overload of.
template <class Bound, auto kGet>
PyObject* slotOf(PyObject* self, void* /*closure*/) noexcept {
  if (!nb::inst_ready(self)) {
    PyErr_SetString(PyExc_TypeError, "the object was not initialised");
    return nullptr;
  }
  const auto value = kGet(*nb::inst_ptr<Bound>(self));
  if constexpr (std::is_same_v<decltype(value), const bool>) return PyBool_FromLong(value);
  return PyLong_FromUnsignedLongLong(value);
}

template <class Bound, auto kGet>
constexpr PyGetSetDef property(const char* name, const char* about) {
  return {name, &slotOf<Bound, kGet>, nullptr, about, nullptr};
}

/// What f(network) gives, which changes the network.
template <class F>
auto editing(BoundNetwork& bound, F&& f) {
  // In this order: who waits for an edit may hold the interpreter's lock, which must not be waited
  // for before the edit is over.
  const nb::gil_scoped_release released;
  const EditingUse use(*bound.use, "the network is in use: a walk or another call reads it");
  return f(bound.network);
}

/// Lets Python follow work: every 50 ms signals are looked after, and a callable is told what is
/// done of how much. What either raises ends the work; so does False.
class Follow {
 public:
  explicit Follow(nb::object callable) : callable_(std::move(callable)) {}
  Follow(const Follow&) = delete;
  Follow& operator=(const Follow&) = delete;

  [[nodiscard]] Progress progress();

 private:
  void report(std::uint64_t done, std::uint64_t all);

  nb::object callable_;
  StopSource stop_;
};

/// A place in a sequence of random numbers that one call at a time draws from.
struct BoundRandom {
  explicit BoundRandom(RandomState made) : state(std::move(made)) {}

  RandomState state;
  std::shared_ptr<Use> use = std::make_shared<Use>();
};

/// What a walk can be walked again from.
struct BoundRecord {
  WalkRecord record;
};

/// The state of a Python object, held for as long as a call draws from it; null for None.
class Drawing {
 public:
  explicit Drawing(BoundRandom* random) {
    if (random == nullptr) return;
    use_.emplace(*random->use, "the random state is in use by another thread");
    state_ = &random->state;
  }
  [[nodiscard]] RandomState* state() const { return state_; }

 private:
  std::optional<EditingUse> use_;
  RandomState* state_ = nullptr;
};

/// The value of a word; ValueError naming those that there are.
template <class T>
[[nodiscard]] T named(std::string_view word, const char* what,
                      std::initializer_list<std::pair<std::string_view, T>> words) {
  std::string known;
  for (const auto& [name, value] : words) {
    if (name == word) return value;
    known += (known.empty() ? "'" : ", '") + std::string(name) + "'";
  }
  throw std::invalid_argument(std::string(what) + " '" + std::string(word) + "': give one of " +
                              known);
}

[[nodiscard]] inline Direction directionNamed(std::string_view mode) {
  return named<Direction>(
      mode, "mode", {{"out", Direction::kOut}, {"in", Direction::kIn}, {"all", Direction::kAll}});
}

[[nodiscard]] inline Choice choiceNamed(std::string_view choice) {
  return named<Choice>(choice, "choice",
                       {{"published", Choice::kPublished},
                        {"even", Choice::kEven},
                        {"weighted", Choice::kWeighted}});
}

/// An index below the count; IndexError, "vertex 7 of 5", otherwise.
[[nodiscard]] inline std::uint64_t indexBelow(std::int64_t index, std::uint64_t count,
                                              const char* what) {
  if (index >= 0 && static_cast<std::uint64_t>(index) < count) {
    return static_cast<std::uint64_t>(index);
  }
  throw std::out_of_range(std::string(what) + " " + std::to_string(index) + " of " +
                          std::to_string(count));
}

// A room each.
void bindErrors(nb::module_& m);
void bindNetwork(nb::module_& m);
void bindColumns(nb::module_& m);
void bindDerived(nb::module_& m);
void bindQuestions(nb::module_& m);
void bindDistances(nb::module_& m);
void bindModels(nb::module_& m);
void bindParallelism(nb::module_& m);
void bindRandom(nb::module_& m);
void bindWalkers(nb::module_& m);
void bindWalkLaw(nb::module_& m);
void bindWalkNetwork(nb::module_& m);
void bindFormats(nb::module_& m);
void bindDrawing(nb::module_& m);
void bindSharing(nb::module_& m);

}  // namespace veq::python
