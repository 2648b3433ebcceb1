#include "zipper.h"

#include <pthread.h>

#include <array>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "deflater.h"

namespace mdf_writer {

/// Packs the blocks in the order in which they come: when they come, or on a thread.
class Zipper::Worker {
 public:
  explicit Worker(const ZipOptions& options)
      : deflater_(options.level), is_transposed_(options.is_transposed) {
    has_thread_ = options.has_own_thread && pthread_create(&thread_, nullptr, &run, this) == 0;
  }

  ~Worker() {
    if (has_thread_) {
      {
        const std::lock_guard<std::mutex> lock(mutex_);
        is_ended_ = true;
      }
      changed_.notify_all();
      pthread_join(thread_, nullptr);
    }
  }

  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  bool transposes() const { return is_transposed_; }
  std::size_t ahead() const { return has_thread_ ? 1 : 0; }

  void give(std::string_view data, std::uint32_t row_bytes) {
    Slot& slot = slotOf(given_);
    slot.data = data;
    slot.row_bytes = row_bytes;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      ++given_;
    }
    if (has_thread_) {
      changed_.notify_all();
    } else {
      packNext();
    }
  }

  std::string_view take() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return packed_ > taken_; });
    const Slot& slot = slotOf(taken_++);
    return {slot.packed.data(), slot.size};
  }

 private:
  struct Slot {
    std::string_view data;
    std::uint32_t row_bytes = 0;
    std::vector<char> packed;
    std::size_t size = 0;  ///< of what is packed
  };

  Slot& slotOf(std::size_t block) { return slots_[block % (ahead() + 1)]; }

  static void* run(void* worker) {
    static_cast<Worker*>(worker)->packAll();
    return nullptr;
  }

  void packAll() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (true) {
      changed_.wait(lock, [this] { return is_ended_ || given_ > packed_; });
      if (is_ended_) {
        return;
      }
      lock.unlock();
      packNext();
      changed_.notify_all();
      lock.lock();
    }
  }

  void packNext() {
    Slot& slot = slotOf(packed_);
    slot.size = deflater_.pack(slot.data, slot.row_bytes, slot.packed);
    const std::lock_guard<std::mutex> lock(mutex_);
    ++packed_;
  }

  Deflater deflater_;
  bool is_transposed_;
  bool has_thread_ = false;
  pthread_t thread_{};
  std::array<Slot, 2> slots_;  ///< one that is being packed, one that waits or was packed

  std::mutex mutex_;  ///< of the numbers below
  std::condition_variable changed_;
  std::size_t given_ = 0;
  std::size_t packed_ = 0;
  std::size_t taken_ = 0;
  bool is_ended_ = false;
};

Zipper::Zipper(const ZipOptions& options) : worker_(std::make_unique<Worker>(options)) {}

Zipper::~Zipper() = default;

bool Zipper::transposes() const { return worker_->transposes(); }

std::size_t Zipper::ahead() const { return worker_->ahead(); }

void Zipper::give(std::string_view data, std::uint32_t row_bytes) {
  worker_->give(data, row_bytes);
}

std::string_view Zipper::take() { return worker_->take(); }

}  // namespace mdf_writer
