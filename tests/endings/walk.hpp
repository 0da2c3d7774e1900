#pragma once

/// 0 where a walk that threads share leads where it should.
extern "C" __attribute__((visibility("default"))) int walkOnThreads();

/// Walks with several threads for very long, and calls stepsAreDone() again and again.
void walkFor(void (*stepsAreDone)());

/// Ends the program with 1 where its last walk goes wrong.
struct WalksAtItsEnd {
  ~WalksAtItsEnd();
};
