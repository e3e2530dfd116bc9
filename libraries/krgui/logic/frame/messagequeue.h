#pragma once
// Messages from any thread to one window's user-interface thread, without a toolkit. Window and workers share the
// queue, never a pointer to the window. How the user-interface thread is woken from its loop is left to whoever watches
// the wake-up descriptor.

#include <cstdint>
#include <memory>
#include <optional>

namespace krgui {

/// A number with two parameters, as windows define their own.
struct Message {
  std::uint32_t number = 0;
  std::uint64_t first = 0;
  std::int64_t second = 0;
  friend bool operator==(const Message&, const Message&) = default;
};

/// One worker's membership in a queue: its sends end when it is joined.
///
/// Thread: any. Ownership: shared by the worker and by whoever joins it.
class WorkerTicket {
public:
  WorkerTicket();
  ~WorkerTicket();
  WorkerTicket(const WorkerTicket&) = delete;
  WorkerTicket& operator=(const WorkerTicket&) = delete;

private:
  friend class MessageQueue;
  struct Body;
  std::shared_ptr<Body> mBody;
};

/// The queue of one window; it outlives openings and closings.
///
/// Thread: Post, PostOnce, Send and CancelSends from any thread; Open, Close and Take on the user-interface thread.
class MessageQueue {
public:
  MessageQueue();
  ~MessageQueue();
  MessageQueue(const MessageQueue&) = delete;
  MessageQueue& operator=(const MessageQueue&) = delete;

  /// Accepts messages from now on; the calling thread is the one that takes them. Each opening and closing is a new
  /// generation; what an opening that was not closed left behind is dropped.
  void Open();
  /// Drops what was posted, ends every send, accepts nothing until the next Open.
  void Close();
  bool IsOpen() const;
  /// Counts openings and closings.
  std::uint64_t GetGeneration() const;

  /// Appends a message; false while the queue is closed.
  bool Post(const Message& aMessage);
  /// As Post, unless an equal message already waits: for messages that only say "look again".
  bool PostOnce(const Message& aMessage);
  /// Hands over a message before all posted ones and waits until its handler has returned; gives the handler's answer.
  /// Nothing when the queue is closed, closes meanwhile, or the worker's ticket is cancelled: at once, even while the
  /// handler still runs. Called on the thread that takes messages it would wait for itself: nothing at once.
  std::optional<std::int64_t> Send(const std::shared_ptr<WorkerTicket>& aTicket, const Message& aMessage);
  /// Ends the waiting, running and later sends of a worker; called before it is joined. A send that waits is withdrawn.
  /// A worker that sends to more than one queue is cancelled in each.
  void CancelSends(const std::shared_ptr<WorkerTicket>& aTicket);

  /// One message as it is taken: its handler answers a sender by Answer; without an answer the sender gets 0 when the
  /// object ends.
  class Taken {
  public:
    Taken(Taken&&) noexcept;
    Taken& operator=(Taken&&) = delete;
    ~Taken();
    const Message& Get() const;
    /// The answer for the sender; for a posted message without effect.
    void Answer(std::int64_t aValue);

  private:
    friend class MessageQueue;
    struct Body;
    explicit Taken(std::unique_ptr<Body> aBody);
    std::unique_ptr<Body> mBody;
  };
  /// Takes the next message: sends before posts, each in order. Nothing when none waits.
  std::optional<Taken> Take();
  bool IsEmpty() const;

  /// A file descriptor (eventfd) that is readable while messages wait; belongs to the queue. -1 when the system gave
  /// none.
  int GetWakeDescriptor() const;

private:
  struct State;
  std::shared_ptr<State> mState;
};

} // namespace krgui
