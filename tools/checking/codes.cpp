#include "codes.h"

#include <algorithm>

namespace mdf_tools {

namespace {

using Texts = std::vector<CodeText>;

Texts fileCodes() {
  return {
      {Code::not_mdf, "not-mdf", Severity::error,
       R"(The file does not begin with "MDF     " or "UnFinMF ", or is too short for the 64 bytes that
identify a measurement file. When a header block stands behind them all the same, it is followed.)"},
      {Code::version_wrong, "version-wrong", Severity::error,
       R"(The version number is none of MDF 4 (400 to 499). Files of versions 2 and 3 are laid out in
another way; they need a program for those.)"},
      {Code::version_text_wrong, "version-text-wrong", Severity::warning,
       R"(The version stands in the file as a text and as a number, and the two differ. Programs that
look at the one may refuse what those that look at the other accept.)"},
      {Code::header_missing, "header-missing", Severity::error,
       R"(There is no header block ("##HD") at offset 64, where every file has it. Nothing else can be
found without it.)"},
      {Code::file_unfinished, "file-unfinished", Severity::warning,
       R"(The file was not closed by the program that wrote it: it begins with "UnFinMF ". What the flags
at offset 60 say is open is named. A program that finishes such files can repair it; counts of
records are not compared with the data.)"},
  };
}

Texts linkCodes() {
  return {
      {Code::link_outside_file, "link-outside-file", Severity::error,
       R"(A link leads behind the end of the file, so close to it that not even a block's header of 24
bytes follows, or is negative. The file has been cut off, or the link is damaged.)"},
      {Code::link_misaligned, "link-misaligned", Severity::error,
       R"(A link leads to an offset that is no multiple of 8, and there is no block. All blocks stand on
multiples of 8.)"},
      {Code::link_inside_block, "link-inside-block", Severity::error,
       R"(A link leads into the middle of another block, or of the 64 bytes of identification.)"},
      {Code::link_to_no_block, "link-to-no-block", Severity::error,
       R"(A link leads to bytes outside any block that do not begin like one: "##" and two capital
letters.)"},
      {Code::link_wrong_type, "link-wrong-type", Severity::error,
       R"(A link leads to a block of a type that does not belong there, such as a channel's conversion
that is a text. Blocks of types that this program does not know may stand anywhere.)"},
      {Code::chain_endless, "chain-endless", Severity::error,
       R"(A link of a list or tree that must end leads back to where one has come from, so that it has no
end. Programs that follow it without counting hang.)"},
  };
}

Texts blockCodes() {
  return {
      {Code::block_misaligned, "block-misaligned", Severity::warning,
       R"(A block stands at an offset that is no multiple of 8. Most programs read it all the same.)"},
      {Code::length_too_small, "length-too-small", Severity::error,
       R"(A block's length does not hold its header, its links and the fields that its type has.)"},
      {Code::length_past_end, "length-past-end", Severity::error,
       R"(A block's length goes past the end of the file. The file has been cut off, or the length is
damaged.)"},
      {Code::blocks_overlap, "blocks-overlap", Severity::error,
       R"(A block is so long that another one begins inside it. It is reported once for each block that
reaches into others.)"},
      {Code::links_missing, "links-missing", Severity::error,
       R"(A block has fewer links than its type must have, or than its counts and flags speak of.)"},
      {Code::block_unreachable, "block-unreachable", Severity::warning,
       R"(Bytes that no block covers look like a block: an identifier, a length that fits, on a multiple
of 8. No link leads there. Either a program took the block out of its list, or a link to it is lost,
and with it everything behind.)"},
      {Code::count_too_large, "count-too-large", Severity::error,
       R"(A count speaks of more elements than there is room for in the block.)"},
  };
}

Texts dataCodes() {
  return {
      {Code::list_count_wrong, "list-count-wrong", Severity::error,
       R"(The number of data blocks that a data list states is not the number of its links to them.)"},
      {Code::list_offsets_not_ascending, "list-offsets-not-ascending", Severity::error,
       R"(The offsets of a data list go down, so that no block can be found by them.)"},
      {Code::list_offsets_wrong, "list-offsets-wrong", Severity::error,
       R"(Two neighbouring offsets of a data list are not as far apart as the data block between them is
long.)"},
      {Code::equal_length_broken, "equal-length-broken", Severity::error,
       R"(A data list says that its blocks all hold the same number of bytes, and one that is not the
last of all holds another number.)"},
      {Code::zip_length_wrong, "zip-length-wrong", Severity::error,
       R"(The compressed length of a zipped data block goes past the end of the block.)"},
      {Code::zip_broken, "zip-broken", Severity::error,
       R"(Compressed data cannot be inflated: it is damaged, cut off, or no zlib stream.)"},
      {Code::zip_original_length_wrong, "zip-original-length-wrong", Severity::error,
       R"(Compressed data inflates to more or fewer bytes than the block says.)"},
      {Code::text_not_terminated, "text-not-terminated", Severity::warning,
       R"(A text or metadata block has no zero byte at the end of its text. Programs that look for one
read on behind the block.)"},
      {Code::text_not_utf8, "text-not-utf8", Severity::warning,
       R"(A text is not encoded in UTF-8, as all texts of MDF 4 are.)"},
      {Code::xml_not_well_formed, "xml-not-well-formed", Severity::warning,
       R"(The XML of a metadata block cannot be parsed. Programs ignore such a comment or show it as it
stands.)"},
      {Code::attachment_length_wrong, "attachment-length-wrong", Severity::error,
       R"(An attachment's embedded size goes past the end of the block, or differs from its original size
although it is not compressed.)"},
      {Code::attachment_digest_wrong, "attachment-digest-wrong", Severity::error,
       R"(The MD5 digest of an embedded attachment is not the one that is stored with it: one of the two
has been changed.)"},
  };
}

Texts recordCodes() {
  return {
      {Code::record_id_size_wrong, "record-id-size-wrong", Severity::error,
       R"(The size of a data group's record ids is none of 0, 1, 2, 4 and 8 bytes (3 is taken for 4), or
is 0 although the group has several channel groups.)"},
      {Code::record_id_twice, "record-id-twice", Severity::error,
       R"(Two channel groups of a data group have the same record id, so that their records cannot be
told apart.)"},
      {Code::record_id_unknown, "record-id-unknown", Severity::error,
       R"(The data has a record with an id that no channel group of its data group has. Nothing behind
such a record can be read, for nobody knows how long it is.)"},
      {Code::record_cut_off, "record-cut-off", Severity::error,
       R"(The data of a data group with several channel groups ends in the middle of a record.)"},
      {Code::cycle_count_wrong, "cycle-count-wrong", Severity::error,
       R"(The number of records that a channel group or a sample reduction states is not the number that its
data has. In a sample reduction, and in a data group with one channel group, the number of bytes
decides: records times the size of one. In others the records are counted.)"},
      {Code::data_shared, "data-shared", Severity::warning,
       R"(The same data block or data list is data of two data groups or sample reductions, or is there
twice in one. It is counted once.)"},
      {Code::channel_outside_record, "channel-outside-record", Severity::error,
       R"(A channel's bits, or those of an element of an array, are outside the data bytes of its channel
group's records.)"},
      {Code::invalidation_bit_outside_record, "invalidation-bit-outside-record", Severity::error,
       R"(A channel's invalidation bit, or that of an element of an array, is behind the invalidation bytes of
its channel group's records.)"},
      {Code::value_outside_signal_data, "value-outside-signal-data", Severity::error,
       R"(A channel of variable length has records without a value: the offset in the record, or the length
that stands there, goes past the end of the channel's signal data. Where values are the records of
another channel group, and where a record refers back to a value before the last one, the offset
alone is looked at. Channels that share their signal data are not looked at but for the first.)"},
      {Code::master_missing, "master-missing", Severity::note,
       R"(A channel group has channels and records, and no master channel: there is no time, angle or
distance to draw the channels over, but the number of the record.)"},
      {Code::master_twice, "master-twice", Severity::warning,
       R"(A channel group has two master channels of the same kind, such as time. Programs take either.)"},
      {Code::masters_overlap, "masters-overlap", Severity::error,
       R"(Two master channels of a channel group share bits of the record.)"},
  };
}

}  // namespace

const Texts& allCodes() {
  static const Texts all = [] {
    Texts codes;
    for (const Texts& part : {fileCodes(), linkCodes(), blockCodes(), dataCodes(), recordCodes()}) {
      codes.insert(codes.end(), part.begin(), part.end());
    }
    return codes;
  }();
  return all;
}

const CodeText& textOf(Code code) { return allCodes().at(static_cast<std::size_t>(code)); }

const CodeText* findCode(std::string_view word) {
  const auto found = std::find_if(allCodes().begin(), allCodes().end(),
                                  [&](const CodeText& each) { return each.word == word; });
  return found == allCodes().end() ? nullptr : &*found;
}

std::string_view severityWord(Severity severity) {
  switch (severity) {
    case Severity::note:
      return "note";
    case Severity::warning:
      return "warning";
    case Severity::error:
      break;
  }
  return "error";
}

}  // namespace mdf_tools
