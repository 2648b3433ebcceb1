#include "codes.h"

#include <algorithm>
#include <iterator>

namespace mdf_reader {

namespace {

constexpr CodeText texts[] = {
    // The file as a whole.
    {Code::not_mdf, Severity::error, "not-mdf", "The file does not begin like an MDF file",
     R"(The file must begin with "MDF     " or "UnFinMF ", and have 64 bytes of identification.
Where a header block follows all the same, the check goes on from there.)",
     R"(Make sure that this is a measurement file and that it arrived whole.)"},
    {Code::version_wrong, Severity::error, "version-wrong", "The version is not one of MDF 4",
     R"(The version number is not in the range 400 to 499. Files of versions 2 and 3 have
another layout.)",
     R"(Use a program for that version.)"},
    {Code::version_text_wrong, Severity::warning, "version-text-wrong",
     "The two statements of the version differ",
     R"(The identification has the version as a text and as a number. Programs that read one of
them may refuse the file where programs that read the other accept it.)",
     R"(Correct the program that wrote the file.)"},
    {Code::header_missing, Severity::error, "header-missing", "There is no header block",
     R"(Every file has its header block ("##HD") at offset 64. Without it nothing else can be
found.)",
     R"(Restore the file from a copy: its first bytes were overwritten, or never written.)"},
    {Code::file_unfinished, Severity::warning, "file-unfinished", "The file was not finished",
     R"(The file begins with "UnFinMF ": the program that wrote it did not close it. The message
names what the flags at offset 60 leave open. Counts that are open are not compared with
the data.)",
     R"(Finish the file with a program that can do so. Its data can be read up to the point
where the recording ended.)"},
    // Links.
    {Code::link_outside_file, Severity::error, "link-outside-file", "A link leads outside the file",
     R"(The link is negative, or fewer than the 24 bytes of a block's header follow at the
offset that it leads to.)",
     R"(Compare the size of the file with that of the original: most often the file has been cut
off. Otherwise the link is damaged.)"},
    {Code::link_misaligned, Severity::error, "link-misaligned",
     "A link leads to an offset that is not a multiple of 8",
     R"(Blocks stand on multiples of 8, and there is no block at this offset.)",
     R"(Look at the bytes around it with `mdf dump --hex --at`: a block nearby may be the one
that is meant.)"},
    {Code::link_inside_block, Severity::error, "link-inside-block",
     "A link leads into the middle of a block",
     R"(The offset lies inside another block, or inside the 64 bytes of identification.)",
     R"(If the length of the other block is damaged, correct that first. Otherwise the link is
wrong.)"},
    {Code::link_to_no_block, Severity::error, "link-to-no-block",
     "A link leads to bytes that are not a block",
     R"(The offset is outside all blocks, and the bytes there do not begin like one: "##" and
two capital letters.)",
     R"(The link is damaged, or the block was overwritten or never written.)"},
    {Code::link_wrong_type, Severity::error, "link-wrong-type",
     "A link leads to a block of the wrong type",
     R"(The format does not allow this type here: a text in place of a channel's conversion, for
example.)",
     R"(Correct the program that wrote the file. Other programs ignore the link or refuse the
file.)"},
    {Code::link_unknown_type, Severity::error, "link-unknown-type",
     "A list or tree goes on with a block of an unknown type",
     R"(No version from 4.0 to 4.2 has blocks of this type. A list, such as a chain of channels,
ends here for programs that do not know it. Links that only refer to a block may lead to
types that are not known.)",
     R"(If the file is of a later version, use a program for that one. Otherwise the link or the
block's identifier is damaged.)"},
    {Code::chain_endless, Severity::error, "chain-endless", "A list or tree leads back to itself",
     R"(A link of a list or tree that must end leads back to a block that it comes from.
Programs that follow it without counting hang.)",
     R"(Correct the program that wrote the file, or set the link to 0.)"},
    {Code::chain_shared, Severity::error, "chain-shared",
     "A list or tree leads to a block of another one",
     R"(The block has its place in another list or tree: the channels of one channel group lead on
to those of another, for example. Programs end the list here, or read the channels with
records that they do not belong to.)",
     R"(Correct the program that wrote the file. If a link is damaged, the blocks after it may be
lost: `mdf check` then names them as block-unreachable.)"},
    // Blocks.
    {Code::block_misaligned, Severity::warning, "block-misaligned",
     "A block stands at an offset that is not a multiple of 8",
     R"(Most programs read it all the same.)",
     R"(Correct the program that wrote the file: round each offset up to a multiple of 8.)"},
    {Code::length_too_small, Severity::error, "length-too-small",
     "A block's length is too small for its type",
     R"(The length does not hold the header, the links and the fields of the type.)",
     R"(The length or the link count is damaged, or the writer left out fields.
`mdf dump --hex --at` shows the bytes.)"},
    {Code::length_past_end, Severity::error, "length-past-end",
     "A block's length goes past the end of the file",
     R"(Fewer bytes follow in the file than the block states.)",
     R"(Compare the size of the file with that of the original: most often the file has been cut
off. Otherwise the length is damaged.)"},
    {Code::blocks_overlap, Severity::error, "blocks-overlap", "Two blocks overlap",
     R"(A block is so long that another one begins inside it. This is reported once for each
block that reaches into others.)",
     R"(One of the two was written over the other, or the first one's length is wrong.
`mdf graph --map` shows the places.)"},
    {Code::links_missing, Severity::error, "links-missing", "A block has too few links",
     R"(The link count is below what the type must have, or below what the counts and flags of
the block require.)",
     R"(Correct the program that wrote the file. Other programs read fields in place of links,
or the reverse.)"},
    {Code::link_count_wrong, Severity::warning, "link-count-wrong",
     "A block has more links than it states",
     R"(By its length, a header list (HL) or a channel hierarchy (CH) has more links than its link
count says. Programs that believe the count take links for fields.)",
     R"(Correct the program that wrote the file. This program goes by the length.)"},
    {Code::data_with_links, Severity::error, "data-with-links", "A data block has links",
     R"(No block with data has links. Some programs read the data from the header on, others from
the links on.)",
     R"(Set the link count to 0, unless links do stand before the data.)"},
    {Code::block_unreachable, Severity::warning, "block-unreachable", "No link leads to a block",
     R"(Bytes outside all blocks look like a block: an identifier and a length that fits, on a
multiple of 8. Either a program took the block out of its list, or a link is lost, and
with it all blocks that follow.)",
     R"(Look at the block with `mdf dump --at`. If it was removed on purpose, nothing is wrong.)"},
    {Code::bytes_outside_blocks, Severity::warning, "bytes-outside-blocks",
     "There are bytes outside all blocks",
     R"(Between two blocks, or after the last one, there are bytes that are not padding up to the
next multiple of 8, not zero and not a block. They are counted from the first to the last
that is not zero. After the last data block of an unfinished file such bytes are its data.)",
     R"(Look at them with a hex viewer: something was appended to the file, data was lost, or the
length of the block before them is too small.)"},
    {Code::count_too_large, Severity::error, "count-too-large", "A count is larger than the block",
     R"(The count stands for more elements than there is room for in the block.)",
     R"(The count or the length is damaged.)"},
    {Code::work_limited, Severity::error, "work-limited", "Not everything was read",
     R"(Blocks overlap, or many refer to the same large one, so that reading all would read the same
bytes again and again. What goes beyond some times the size of the file is skipped.)",
     R"(The file is damaged, or it was made to keep programs busy.)"},
    {Code::file_shrunk, Severity::error, "file-shrunk", "The file became shorter",
     R"(While it was read, another program cut it off.)", R"(Read a copy of the file.)"},
    {Code::request_failed, Severity::error, "request-failed", "A request cannot be met",
     R"(A command was asked for what the file does not have, such as a block at an offset, or to write
a file that is there already.)",
     R"(Check the options of the command. `mdf check` never reports this.)"},
    // Data.
    {Code::list_count_wrong, Severity::error, "list-count-wrong",
     "A data list states a wrong number of blocks",
     R"(The count of data blocks is not the number of links to them.)",
     R"(Correct the program that wrote the file. Programs go by either number.)"},
    {Code::list_offsets_not_ascending, Severity::error, "list-offsets-not-ascending",
     "The offsets of a data list go down",
     R"(Programs find a block by its offset in the data, so the offsets must go up.)",
     R"(Correct the program that wrote the file. The data itself can be read in the order of the
links.)"},
    {Code::list_offsets_wrong, Severity::error, "list-offsets-wrong",
     "An offset of a data list does not fit the data",
     R"(Two neighbouring offsets must be as far apart as the data block between them is long.)",
     R"(Either an offset is wrong, or a data block is shorter or longer than it was.)"},
    {Code::equal_length_broken, Severity::error, "equal-length-broken",
     "The blocks of a data list are not equally long",
     R"(The list states one number of bytes for all of its blocks; a block other than the very
last one holds another number.)",
     R"(Correct the program that wrote the file: such a list needs offsets instead. Programs
that compute the place of a record find other bytes.)"},
    {Code::zip_length_wrong, Severity::error, "zip-length-wrong",
     "The compressed length goes past the end of the block",
     R"(A zipped data block states more compressed bytes than it has.)",
     R"(The block or the file was cut off, or the length is damaged.)"},
    {Code::zip_broken, Severity::error, "zip-broken", "Compressed data cannot be inflated",
     R"(The bytes are damaged, cut off, or not a zlib stream.)",
     R"(Restore the file from a copy. Blocks before and after this one can still be read.)"},
    {Code::zip_original_length_wrong, Severity::error, "zip-original-length-wrong",
     "Compressed data has another length than stated",
     R"(It inflates to more or fewer bytes than the block says.)",
     R"(Correct the program that wrote the file, or restore the file from a copy.)"},
    {Code::zip_type_unknown, Severity::error, "zip-type-unknown",
     "Data is compressed in an unknown way",
     R"(The zip type of the block is none that this program knows. The data is not read.)",
     R"(The block is damaged, or it was written by a newer version of the format.)"},
    {Code::text_not_terminated, Severity::warning, "text-not-terminated",
     "A text has no zero byte at its end",
     R"(A text or metadata block must end in a zero byte. Programs that look for one read on
after the block.)",
     R"(Correct the program that wrote the file: count the zero byte in the length.)"},
    {Code::text_not_utf8, Severity::warning, "text-not-utf8", "A text is not UTF-8",
     R"(All texts of MDF 4 are encoded in UTF-8. This one most likely has the encoding of the
machine that wrote it.)",
     R"(Correct the program that wrote the file. Programs show other characters or none.)"},
    {Code::xml_not_well_formed, Severity::warning, "xml-not-well-formed",
     "The XML of a comment cannot be parsed",
     R"(The text of a metadata block is not well-formed XML. Programs ignore such a comment, or
show it as it stands.)",
     R"(Correct the program that wrote the file: most often `&` or `<` was not escaped.)"},
    {Code::attachment_length_wrong, Severity::error, "attachment-length-wrong",
     "The sizes of an attachment do not fit",
     R"(The embedded size goes past the end of the block, or differs from the original size
although the attachment is not compressed.)",
     R"(The attachment was cut off, or one of its sizes is damaged.)"},
    {Code::attachment_digest_wrong, Severity::error, "attachment-digest-wrong",
     "The digest of an attachment does not match",
     R"(The MD5 digest of the embedded bytes is not the one that is stored with them.)",
     R"(One of the two has been changed. Get the attached file from its source if its contents
matter.)"},
    // Records.
    {Code::record_id_size_wrong, Severity::error, "record-id-size-wrong",
     "The size of record ids is wrong",
     R"(A data group's record ids must have 0, 1, 2, 4 or 8 bytes (3 is read as 4), and more
than 0 when the group has several channel groups.)",
     R"(Correct the program that wrote the file. The records cannot be told apart.)"},
    {Code::record_id_twice, Severity::error, "record-id-twice",
     "Two channel groups have the same record id", R"(Their records cannot be told apart.)",
     R"(Correct the program that wrote the file: ids must differ within a data group.)"},
    {Code::record_id_unknown, Severity::error, "record-id-unknown", "A record has an unknown id",
     R"(No channel group of the data group has this id. Nothing after such a record can be read,
since its length is not known.)",
     R"(The data is damaged at the byte that the message names, or the records before it have
another length than their channel group states.)"},
    {Code::record_past_end, Severity::error, "record-past-end",
     "A record of variable length is longer than the data",
     R"(The length that the record states goes past the end of the data. Nothing after it can be
read. The message says how many bytes that are.)",
     R"(The length is damaged, or the id of a record before it, so that no record begins here; or the
file was cut off.)"},
    {Code::record_cut_off, Severity::error, "record-cut-off", "The data ends with a torn record",
     R"(The data of a data group ends in the middle of a record.)",
     R"(The recording was interrupted, or the file was cut off. All records before it can be
read.)"},
    {Code::bytes_not_read, Severity::warning, "bytes-not-read",
     "Data of an unfinished file is not read to its end",
     R"(The data goes on with bytes that are not a whole record: an unknown record id, after which
nobody knows where the next record begins, or a torn record. The message says how many bytes
they are.)",
     R"(All records before these bytes can be read. A few bytes at the end are a record that was being
written; many bytes mean that the data is damaged at the offset of the message.)"},
    {Code::cycle_count_wrong, Severity::error, "cycle-count-wrong",
     "The number of records is wrong",
     R"(A channel group or a sample reduction states another number of records than its data
has. With one channel group in a data group, and in a sample reduction, the length of
the data decides: records times bytes of one. With several, the records are counted.)",
     R"(Set the count to what was found, if the data is whole. If less was found than expected,
data may be lost.)"},
    {Code::data_shared, Severity::warning, "data-shared", "Data is used twice",
     R"(Two data groups or sample reductions have the same data block or data list, or one has
it twice. It is counted once.)",
     R"(Correct the program that wrote the file, unless both are meant to have the same records.)"},
    // Channels and their values, and events.
    {Code::channel_outside_record, Severity::error, "channel-outside-record",
     "A channel is outside the record",
     R"(Bits of the channel, or of an element of an array, are outside the data bytes of its
channel group's records.)",
     R"(The channel's offset or bit count is wrong, or the group states too few data bytes.)"},
    {Code::invalidation_bit_outside_record, Severity::error, "invalidation-bit-outside-record",
     "An invalidation bit is outside the record",
     R"(The bit of the channel, or of an element of an array, is outside the invalidation bytes
of its channel group's records.)",
     R"(The bit's position is wrong, or the group states too few invalidation bytes.)"},
    {Code::channel_without_bits, Severity::warning, "channel-without-bits",
     "A channel has no bits in the record",
     R"(The channel has 0 bits, but it is neither virtual nor a structure. Programs read 0 for each
of its values, or leave it out.)",
     R"(Correct the program that wrote the file: state the number of bits, or make the channel
virtual.)"},
    {Code::signal_data_unused, Severity::error, "signal-data-unused",
     "A channel has signal data that it does not use",
     R"(The channel is not of variable length, but its link to data leads to signal data, or to a
channel group with values. Programs do not read them.)",
     R"(Correct the program that wrote the file: either the channel's type or the link is wrong.)"},
    {Code::value_outside_signal_data, Severity::error, "value-outside-signal-data",
     "Values of variable length are missing",
     R"(The offset in a record, or the length that stands there, goes past the end of the
channel's signal data. The first such record of each channel is reported.)",
     R"(Signal data was lost: the file was cut off, or its list of data blocks is incomplete. The
other records have their values.)"},
    {Code::invalidation_data_wrong, Severity::error, "invalidation-data-wrong",
     "Invalidation data does not fit the records",
     R"(The invalidation bytes of records that stand in blocks of their own are missing, or they are more
or fewer than the records need. Values without them are taken as valid.)",
     R"(Correct the program that wrote the file, or restore the file from a copy.)"},
    {Code::data_type_unknown, Severity::error, "data-type-unknown",
     "A channel has an unknown data type", R"(The values of the channel cannot be read.)",
     R"(The channel is damaged, or it was written by a newer version of the format.)"},
    {Code::array_unreadable, Severity::error, "array-unreadable",
     "The elements of an array cannot be read",
     R"(The elements have records of their own, and these cannot be found or told apart.)",
     R"(Correct the program that wrote the file.)"},
    {Code::conversion_unreadable, Severity::error, "conversion-unreadable",
     "A conversion cannot be used",
     R"(It is of an unknown type, lacks values or references, leads back to itself, or its formula cannot
be evaluated. The values of its channels stay raw.)",
     R"(Correct the program that wrote the file.)"},
    {Code::remote_master_missing, Severity::error, "remote-master-missing",
     "A remote master channel is missing",
     R"(The master channel of a channel group stands in another group (MDF 4.2), which is not there, or
has fewer records.)",
     R"(Correct the program that wrote the file.)"},
    {Code::master_missing, Severity::note, "master-missing",
     "A channel group has no master channel",
     R"(The group has channels and records, but no time, angle or distance. Programs draw the
channels over the number of the record.)",
     R"(Nothing is wrong if the samples have no time.)"},
    {Code::master_twice, Severity::warning, "master-twice",
     "A channel group has two master channels of the same kind",
     R"(Both are time, for example. Programs take either.)",
     R"(Correct the program that wrote the file: make one of them an ordinary channel.)"},
    {Code::masters_overlap, Severity::error, "masters-overlap",
     "Two master channels share bits of the record",
     R"(Each master channel of a channel group must have bits of its own.)",
     R"(One channel's offset or bit count is wrong.)"},
    {Code::event_factor_zero, Severity::warning, "event-factor-zero",
     "The position of an event is multiplied by 0",
     R"(An event's position is its base value times its factor. With a factor of 0 every position
becomes 0, the start of the measurement.)",
     R"(Correct the program that wrote the file: the factor is 1 where the base value is already
in seconds, radians or metres.)"},
};

}  // namespace

const std::vector<CodeText>& allCodes() {
  static const std::vector<CodeText> all(std::begin(texts), std::end(texts));
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

}  // namespace mdf_reader
