#ifndef MDF_READER_MODEL_ELEMENT_GROUPS_H_
#define MDF_READER_MODEL_ELEMENT_GROUPS_H_

#include "../blocks/finding.h"
#include "description.h"

namespace mdf_reader {

class InputFile;

/// Gives the elements of arrays that have records of their own a channel group each. The first
/// element keeps the existing group; the others come after it, or after its data group where they
/// have data of their own. Their channels are not copied: see LentChannels. What prevents this is
/// reported, and such a group stays as it is, without elements.
void splitElements(InputFile& file, Description& description, const FindingSink& report);

/// Lends the channels of the first element to the channel group of another one.
class LentChannels {
 public:
  LentChannels(ChannelGroup& owner, ChannelGroup& borrower) : owner_(owner), borrower_(borrower) {
    move();
  }
  ~LentChannels() { move(); }
  LentChannels(const LentChannels&) = delete;
  LentChannels& operator=(const LentChannels&) = delete;

 private:
  /// One of the two has them, and the other has none.
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
