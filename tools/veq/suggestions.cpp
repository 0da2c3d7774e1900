#include "suggestions.hpp"

#include <algorithm>
#include <cstddef>

namespace veq::tool {
namespace {

/// How many letters to add, drop, change or swap with their neighbour make one word of the other.
std::size_t distanceBetween(std::string_view a, std::string_view b) {
  // Rows of the table of distances between beginnings: two before, one before, this one.
  std::vector<std::size_t> older(b.size() + 1);
  std::vector<std::size_t> old(b.size() + 1);
  std::vector<std::size_t> now(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) now[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    older.swap(old);
    old.swap(now);
    now[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = old[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      now[j] = std::min({old[j] + 1, now[j - 1] + 1, changed});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        now[j] = std::min(now[j], older[j - 2] + 1);
      }
    }
  }
  return now[b.size()];
}

std::string_view withoutDashes(std::string_view word) {
  word.remove_prefix(std::min(word.find_first_not_of('-'), word.size()));
  return word;
}

}  // namespace

std::string nearestWord(std::string_view typed, const std::vector<std::string>& words) {
  const std::string_view letters = withoutDashes(typed);
  // A longer text is no slip of the keyboard, and would take its square in time.
  if (letters.size() > 64) return {};
  if (letters.size() >= 3) {
    for (const std::string& word : words) {
      if (withoutDashes(word).substr(0, letters.size()) == letters) return word;
    }
  }
  std::string nearest;
  std::size_t least = std::max<std::size_t>(1, letters.size() / 3) + 1;
  for (const std::string& word : words) {
    const std::size_t distance = distanceBetween(letters, withoutDashes(word));
    if (distance >= least) continue;
    least = distance;
    nearest = word;
  }
  return nearest;
}

std::string wordList(const std::vector<std::string>& words, std::string_view lastJoint) {
  std::string list;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) list += i + 1 == words.size() ? " " + std::string(lastJoint) + " " : ", ";
    list += words[i];
  }
  return list;
}

}  // namespace veq::tool
