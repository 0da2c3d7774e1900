/// \file
/// A growable array of numbers of one element type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/numeric/number.hpp"
#include "veq/numeric/property_column.hpp"

namespace veq {

class GenericArray;

namespace internal {

/// Leaves the elements of a vector as they are when it grows without a value, so that whoever is
/// about to fill a large array does not pay for zeros first, and takes large ones in huge pages.
template <class T>
struct UninitialisedAllocator : std::allocator<T> {
  template <class U>
  struct rebind {
    using other = UninitialisedAllocator<U>;
  };
  UninitialisedAllocator() = default;
  template <class U>
  UninitialisedAllocator(const UninitialisedAllocator<U>&) noexcept {}
  [[nodiscard]] T* allocate(std::size_t count) {
    T* block = std::allocator<T>::allocate(count);
    adviseHugePages(block, count * sizeof(T));
    return block;
  }
  template <class U>
  void construct(U* at) noexcept {
    ::new (static_cast<void*>(at)) U;
  }
  template <class U, class... Arguments>
  void construct(U* at, Arguments&&... arguments) {
    ::new (static_cast<void*>(at)) U(std::forward<Arguments>(arguments)...);
  }
};

template <class T>
using RawVector = std::vector<T, UninitialisedAllocator<T>>;

/// Elements in somebody else's memory, for reading alone.
template <class T>
class ForeignElements {
 public:
  ForeignElements(std::span<const T> elements, Shared<const void> owner)
      : first_(std::move(owner), elements.data()), size_(elements.size()) {}
  ForeignElements(const ForeignElements&) = default;
  ForeignElements(ForeignElements&& other) noexcept
      : first_(std::move(other.first_)), size_(std::exchange(other.size_, 0)) {}
  ForeignElements& operator=(ForeignElements other) noexcept {
    std::swap(first_, other.first_);
    std::swap(size_, other.size_);
    return *this;
  }

  [[nodiscard]] const T* data() const { return first_.get(); }
  [[nodiscard]] std::size_t size() const { return size_; }

 private:
  Shared<const T> first_;  // A share of the owner.
  std::size_t size_;
};

}  // namespace internal

/// What values() throws where another element type is asked for than the array holds. The text says
/// which one it holds: "The array holds doubles.", "... integers.", "... floats." or "... unsigned
/// integers."
/// \ingroup values
class VEQ_EXPORT WrongElementType final : public std::bad_variant_access {
 public:
  explicit WrongElementType(ElementType held) noexcept : held_(held) {}

  /// What the array holds.
  [[nodiscard]] ElementType held() const noexcept { return held_; }
  [[nodiscard]] const char* what() const noexcept override;

 private:
  ElementType held_;
};

/// Numbers that go in or come out are converted by the rules of convertNumber. An array can be
/// moved and copied as a value; published operations hand it out as Owned or Shared. Operations on
/// one array need one thread at a time, except that any number of threads may read.
/// \ingroup values
class VEQ_EXPORT VEQNumberArray final : public PropertyColumn {
 public:
  /// An empty array of doubles.
  VEQNumberArray() : VEQNumberArray(internal::RawVector<double>()) {}

  /// An editable copy.
  VEQNumberArray(const VEQNumberArray& other);
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): a fixed one is copied.
  VEQNumberArray(VEQNumberArray&& other)
      : PropertyColumn(other), storage_(taken(other, other.storage_)) {}
  /// Changes the array like any other operation, so that a fixed one refuses it.
  VEQNumberArray& operator=(VEQNumberArray other) {
    requireEditable();
    storage_ = std::move(other.storage_);
    return *this;
  }

  /// \name Arrays from values, for short programs
  /// The element type is what the name says, indices being unsigned integers. A std::vector or
  /// std::array of that type is a span, too.
  /// @{
  [[nodiscard]] static VEQNumberArray ofIndices(std::initializer_list<std::uint64_t> values);
  [[nodiscard]] static VEQNumberArray ofIndices(std::span<const std::uint64_t> values);
  [[nodiscard]] static VEQNumberArray ofIntegers(std::initializer_list<std::int64_t> values);
  [[nodiscard]] static VEQNumberArray ofIntegers(std::span<const std::int64_t> values);
  [[nodiscard]] static VEQNumberArray ofFloats(std::initializer_list<float> values);
  [[nodiscard]] static VEQNumberArray ofFloats(std::span<const float> values);
  [[nodiscard]] static VEQNumberArray ofDoubles(std::initializer_list<double> values);
  [[nodiscard]] static VEQNumberArray ofDoubles(std::span<const double> values);
  /// @}

  /// An array over storage that the caller filled; the element type is T.
  template <class T>
  explicit VEQNumberArray(internal::RawVector<T> storage)
      : PropertyColumn(Kind::kNumber), storage_(std::move(storage)) {}

  /// An array of numbers that are read where they lie, such as in memory that processes share; T is
  /// double, std::int64_t, float or std::uint64_t. They must stay as they are until the owner is
  /// let go of. The first change, or the first call of what may change them, copies them; copies of
  /// the array stand on the same memory. O(1).
  template <class T>
  [[nodiscard]] static Shared<VEQNumberArray> over(std::span<const T> values,
                                                   Shared<const void> owner) {
    return std::make_shared<VEQNumberArray>(internal::ForeignElements<T>(values, std::move(owner)));
  }
  /// The same by itself.
  template <class T>
  explicit VEQNumberArray(internal::ForeignElements<T> elements)
      : PropertyColumn(Kind::kNumber), storage_(std::move(elements)) {}

  /// \name Constructors
  /// std::bad_alloc where the memory cannot be had. A pointer is not read where the count is 0.
  /// @{
  [[nodiscard]] static Owned<VEQNumberArray> initWithDoubleScalar_count(double value,
                                                                        std::uint64_t count);
  [[nodiscard]] static Owned<VEQNumberArray> initWithFloatScalar_count(float value,
                                                                       std::uint64_t count);
  [[nodiscard]] static Owned<VEQNumberArray> initWithIntegerScalar_count(std::int64_t value,
                                                                         std::uint64_t count);
  [[nodiscard]] static Owned<VEQNumberArray> initWithUnsignedIntegerArray_count(
      const std::uint64_t* values, std::uint64_t count);
  [[nodiscard]] static Owned<VEQNumberArray> initWithFloatArray_count(const float* values,
                                                                      std::uint64_t count);
  [[nodiscard]] static Owned<VEQNumberArray> initUnsignedIntegerArrayWithCapacity(
      std::uint64_t capacity);
  [[nodiscard]] static Owned<VEQNumberArray> initFloatArrayWithCapacity(std::uint64_t capacity);
  /// Doubles, separated by runs of blanks or line ends. A piece that is no number reads as far as
  /// it goes, and as 0 where it goes nowhere. O(length).
  [[nodiscard]] static Owned<VEQNumberArray> initWithString(std::string_view text);
  /// One number for each piece between separators, read in the same way; an empty text has no
  /// piece. The type is an element-type code: 12 double, 13 integer, 14 float, 15 unsigned integer;
  /// std::invalid_argument for another code or an empty separator.
  [[nodiscard]] static Owned<VEQNumberArray> initWithString_separator_type(
      std::string_view text, std::string_view separator, int type);

  [[nodiscard]] static Shared<VEQNumberArray> numberArrayWithUnsignedIntegerArray_count(
      const std::uint64_t* values, std::uint64_t count);
  [[nodiscard]] static Shared<VEQNumberArray> numberArrayWithDoubleArray_count(const double* values,
                                                                               std::uint64_t count);
  [[nodiscard]] static Shared<VEQNumberArray> numberArrayWithFloatArray_count(const float* values,
                                                                              std::uint64_t count);
  /// The element type is the number's own; a bool makes an array of integers 0 or 1.
  [[nodiscard]] static Shared<VEQNumberArray> numberArrayWithNumber_count(Number number,
                                                                          std::uint64_t count);
  /// @}

  /// What kind of numbers the elements are.
  [[nodiscard]] ElementType elementType() const;

  /// \name Text
  /// Numbers stand in their shortest round-trip form, integers without a point.
  /// @{
  [[nodiscard]] std::string stringValueWithSeparator(std::string_view separator) const;
  [[nodiscard]] Shared<GenericArray> stringArray() const;
  /// "(1, 2, 3)".
  [[nodiscard]] std::string description() const;
  /// @}

  /// \name Elements
  /// std::out_of_range past the end.
  /// @{
  [[nodiscard]] Number numberAtIndex(std::uint64_t index) const;
  /// The element as T, which is double, float, std::int64_t or std::uint64_t, whatever the array
  /// holds, by the rules of convertNumber.
  template <class T = double>
  [[nodiscard]] T at(std::uint64_t index) const {
    return numberAtIndex(index).as<T>();
  }
  [[nodiscard]] std::int64_t integerValueAtIndex(std::uint64_t index) const;
  void setIntegerValue_atIndex(std::int64_t value, std::uint64_t index);
  /// @}

  /// \name Reading into a caller's buffer
  /// The buffer must have room for all elements, or for the count asked for; std::out_of_range, and
  /// nothing written, where the count is larger than the array.
  /// @{
  void getFloatValues(float* buffer) const;
  void getFloatValues_count(float* buffer, std::uint64_t count) const;
  void getIntegerValues_count(std::int64_t* buffer, std::uint64_t count) const;
  void getUnsignedIntegerValues_count(std::uint64_t* buffer, std::uint64_t count) const;
  /// @}

  /// As PropertyColumn has them, with their own type.
  [[nodiscard]] Owned<VEQNumberArray> subarrayWithIndices(const VEQNumberArray& indices) const;
  [[nodiscard]] Owned<VEQNumberArray> editableCopy() const;
  [[nodiscard]] Owned<VEQNumberArray> copy() const { return editableCopy(); }
  [[nodiscard]] Owned<VEQNumberArray> fixedCopy() const;

  /// The elements in one block, in the array's own element type; writable whatever isEditable()
  /// says. The block moves only when the array grows, and when a foreign one is copied.
  [[nodiscard]] void* VEQ_dataPointer() VEQ_LIFETIME_BOUND;
  [[nodiscard]] const void* VEQ_dataPointer() const VEQ_LIFETIME_BOUND;

  /// A copy of the elements as T, which is double, float, std::int64_t or std::uint64_t, whatever
  /// the array holds, by the rules of convertNumber. It owns itself, so that `for (double d :
  /// network->calcDegrees()->toVector())` is right. O(n).
  template <class T = double>
  [[nodiscard]] std::vector<T> toVector() const {
    std::vector<T> result(static_cast<std::size_t>(count()));
    visit([&result](auto elements) {
      for (std::size_t i = 0; i < elements.size(); ++i) result[i] = convertNumber<T>(elements[i]);
    });
    return result;
  }

  /// The same block with its type; WrongElementType, a std::bad_variant_access, where T is not the
  /// element type. **It dies with the array**: of an operation that gives an array, keep the array
  /// first. In C++20 `for (double d : network->calcDegrees()->values<double>())` reads freed
  /// memory, for the array is gone before the loop begins; toVector() is right there. Asking an
  /// array that is itself a temporary does not compile.
  /// @{
  template <class T>
      [[nodiscard]] std::span<T> values() & VEQ_LIFETIME_BOUND {
    requireType<T>();
    own();
    return *std::get_if<internal::RawVector<T>>(&storage_);
  }
  template <class T>
  [[nodiscard]] std::span<const T> values() const& VEQ_LIFETIME_BOUND {
    if (const auto* own = std::get_if<internal::RawVector<T>>(&storage_)) return *own;
    requireType<T>();
    const auto& foreign = *std::get_if<internal::ForeignElements<T>>(&storage_);
    return {foreign.data(), foreign.size()};
  }
  template <class T>
  std::span<const T> values() const&& = delete;
  /// @}

  /// Calls f with the span of elements in the array's own type.
  template <class F>
  decltype(auto) visit(F&& f) const {
    return std::visit(
        [&f](const auto& elements) { return f(std::span(elements.data(), elements.size())); },
        storage_);
  }

 private:
  // The four element types in the order of ElementType, as elements of the array's own and then as
  // foreign ones.
  using Storage =
      std::variant<internal::RawVector<double>, internal::RawVector<std::int64_t>,
                   internal::RawVector<float>, internal::RawVector<std::uint64_t>,
                   internal::ForeignElements<double>, internal::ForeignElements<std::int64_t>,
                   internal::ForeignElements<float>, internal::ForeignElements<std::uint64_t>>;
  static constexpr std::size_t kElementTypes = 4;

  template <class T>
  void requireType() const {
    if (!std::holds_alternative<internal::RawVector<T>>(storage_) &&
        !std::holds_alternative<internal::ForeignElements<T>>(storage_)) {
      throw WrongElementType(elementType());
    }
  }
  // Copies what is foreign, for whoever is about to change it.
  void own() {
    if (storage_.index() >= kElementTypes) copyForeign();
  }
  void copyForeign();
  // Calls f with the vector of its own elements.
  template <class F>
  void change(F f);

  std::uint64_t doCount() const override;
  PropertyValue doGet(std::uint64_t index) const override;
  void doSet(std::uint64_t index, PropertyValue&& value) override;
  void doReserve(std::uint64_t howManyMore) override;
  void doAppendUnset(std::uint64_t howMany) override;
  void doTruncate(std::uint64_t count) override;
  Owned<PropertyColumn> doSubarray(const VEQNumberArray& indices) const override;
  Owned<PropertyColumn> doCopy() const override;

  Storage storage_;
};

}  // namespace veq
