#pragma once
// A reader's attachment to one table file over time: it maps the file when it is there, follows its
// changes through a ChangeFeed, and hands changed keys to its client from the event loop.
//
// Delivery is bounded per turn of the loop: it runs from the clock (a file's wake-up only asks the
// clock for a turn), delivers for at most `deliveryQuantum` seconds and within the turn's budget,
// then asks for another turn, so that a writer loading a million records does not hold up requests.
// Whether the file is there at the first attach decides how the client learns of its content: present
// then, the client makes its own first pass and hears of later changes to what it has read (see
// ChangeFeed); appearing later, or replacing another file, every key in it is delivered.
//
// A follower may be ordered after another table's (its predecessor): a round of its deliveries waits
// until the predecessor has delivered every change that its writer had logged when the round began,
// pumping the predecessor meanwhile. A reactor of this table then sees the effects of the other
// table's earlier changes; the mark is fixed per round, so a busy predecessor delays a round but
// never starves it.
//
// After a corruption the client detaches; the follower then attaches again only to a different file
// at the path, which is what a writer that rebuilds the table makes.
#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/quor/Clock.h"
#include "platform/tarn/ChangeFeed.h"
#include "platform/tarn/FileWatch.h"

namespace Tarn {

class TableFollower : public Quor::Clock::NotifieeConst {
 public:
  class Client {
   public:
    virtual ~Client() = default;
    // The bytes of a key that may have changed.
    virtual void keyChanged(const std::byte* key) = 0;
    // The file was mapped (true) or let go (false) other than by the client's own call.
    virtual void attachedIs(bool attached) = 0;
    // A read of the file met corruption; the client is expected to detach.
    virtual void corruptionDetected(const std::string& message) = 0;
  };

  static inline double deliveryQuantum = 0.003;

  TableFollower(std::string path, std::string type, U32 keySize, U32 recordSize);
  ~TableFollower() override;

  // Starts following the path for `client`; true when the file is mapped now. Corruption of the file
  // raises CorruptionDetectedException.
  bool attach(Client* client);
  // Lets the file and the client go. With `awaitReplacement`, keeps watching the path and attaches
  // again, for the same client, only to another file than the one let go.
  void detach(bool awaitReplacement);

  // Names the follower whose deliveries come first, or null; asked at each round.
  void predecessorIs(std::function<TableFollower*()> predecessor) { predecessor_ = std::move(predecessor); }

  // The mapped file, null while there is none.
  const TableReader* reader() const noexcept { return reader_.get(); }
  const ChangeFeed& feed() const noexcept { return feed_; }
  const std::string& path() const noexcept { return path_; }

  // Delivers for one quantum and asks for another turn when more is left.
  void pump();
  void onTime() override { pump(); }

 private:
  void fileChanged();
  bool open(bool silently);
  void retire();
  bool predecessorCaughtUp();

  std::string path_;
  std::string type_;
  U32 keySize_;
  U32 recordSize_;
  Client* client_ = nullptr;
  std::unique_ptr<TableReader> reader_;
  std::unique_ptr<TableReader> retired_;  // let go during a pump, freed after it
  ChangeFeed feed_;
  std::unique_ptr<FileWatch> watch_;
  bool pumping_ = false;
  bool opened_ = false;      // whether a file has ever been mapped for this client
  ino_t refusedInode_ = 0;   // a corrupt file, not to be mapped again
  std::function<TableFollower*()> predecessor_;
  // The predecessor's file and change-log position that the present round waits for.
  const TableReader* markedReader_ = nullptr;
  U64 mark_ = 0;
};

}  // namespace Tarn
