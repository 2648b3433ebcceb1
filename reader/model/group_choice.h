#ifndef MDF_READER_MODEL_GROUP_CHOICE_H_
#define MDF_READER_MODEL_GROUP_CHOICE_H_

#include <string>

namespace mdf_reader {

struct ChannelGroup;

/// Whether a channel group is one that a user wants, who names groups by a number, counted from 0
/// through the whole file, or by a pattern with *, ? and [...] for their names; "" for all. What
/// consists of digits alone is a number.
bool isChosen(const ChannelGroup& group, const std::string& choice);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_GROUP_CHOICE_H_
