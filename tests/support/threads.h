// Running the same work on many threads that start together.
#ifndef SCL_REGEX_TESTS_SUPPORT_THREADS_H
#define SCL_REGEX_TESTS_SUPPORT_THREADS_H

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace scl_regex_test {

// Starts `threads` threads, waits until all are running, then has each call
// `work(thread, round)` for rounds 0..rounds-1. Each call returns how many
// wrong results it saw; returns their sum.
inline int run_on_threads(int threads, int rounds, const std::function<int(int, int)>& work) {
  std::atomic<int> ready{0};
  std::atomic<int> wrong{0};
  std::vector<std::thread> running;
  for (int t = 0; t < threads; ++t) {
    running.emplace_back([&, t] {
      ++ready;
      while (ready < threads) std::this_thread::yield();
      for (int round = 0; round < rounds; ++round) wrong += work(t, round);
    });
  }
  for (auto& thread : running) thread.join();
  return wrong;
}

}  // namespace scl_regex_test

#endif  // SCL_REGEX_TESTS_SUPPORT_THREADS_H
