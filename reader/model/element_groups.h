#ifndef MDF_READER_MODEL_ELEMENT_GROUPS_H_
#define MDF_READER_MODEL_ELEMENT_GROUPS_H_

#include "../blocks/finding.h"
#include "description.h"

namespace mdf_reader {

class InputFile;

/// Gives the elements of arrays that have records of their own a channel group each. The first one
/// keeps the group that is there; the others come behind it, or behind its data group where they
/// have data of their own. Of these the channels are not copied: see LentChannels. What does not
/// allow it is reported, and such a group stays as it is, without elements.
void splitElements(InputFile& file, Measurement& measurement, const FindingSink& report);

/// Lets the channel group of another element have the channels of the first one for a while.
class LentChannels {
 public:
  LentChannels(ChannelGroup& owner, ChannelGroup& borrower) : owner_(owner), borrower_(borrower) {
    move();
  }
  ~LentChannels() { move(); }
  LentChannels(const LentChannels&) = delete;
  LentChannels& operator=(const LentChannels&) = delete;

 private:
  /// Either has them and the other has none.
  void move() {
    if (&owner_ != &borrower_) {
      owner_.channels.swap(borrower_.channels);
    }
  }

  ChannelGroup& owner_;
  ChannelGroup& borrower_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_ELEMENT_GROUPS_H_
