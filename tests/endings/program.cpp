// Ends while or after threads have walked, in one of several ways:
//   program static           a static object walks when it is destroyed
//   program running          a walk goes on while the program ends
//   program observer         a walk's observer ends it
//   program unloaded PLUGIN  a shared object walks, is unloaded and loaded again
// 0 is as it should be.
#include <dlfcn.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "tests/endings/walk.hpp"

namespace {

// Constructed before whatever the library has, and so destroyed after it.
const WalksAtItsEnd walksAtTheEnd;

std::atomic<bool> isWalking{false};

int whileAWalkGoesOn() {
  std::thread([] { walkFor([] { isWalking = true; }); }).detach();
  while (!isWalking) std::this_thread::yield();
  return 0;
}

int byAnObserver() {
  walkFor([] { std::exit(0); });
  return 1;
}

bool complain(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  return false;
}

bool worksOnce(const char* plugin) {
  void* const object = dlopen(plugin, RTLD_NOW | RTLD_LOCAL);
  if (!object) return complain(dlerror());
  auto* const walk = reinterpret_cast<int (*)()>(dlsym(object, "walkOnThreads"));
  if (!walk) return complain("the shared object has no walk");
  if (walk() != 0) return complain("the walk in the shared object went wrong");
  if (dlclose(object) != 0) return complain(dlerror());
  if (dlopen(plugin, RTLD_NOW | RTLD_NOLOAD)) return complain("the shared object stays loaded");
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  const std::string way = count > 1 ? arguments[1] : "";
  if (way == "static") return walkOnThreads();
  if (way == "running") return whileAWalkGoesOn();
  if (way == "observer") return byAnObserver();
  if (way != "unloaded" || count != 3) return 2;
  for (int round = 0; round < 5; ++round) {
    if (!worksOnce(arguments[2])) return 1;
  }
  return walkOnThreads();
}
