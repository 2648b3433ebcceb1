/** The reader library for C, and for every language that calls C.
 *
 * A file is opened, described, and read as streams of Apache Arrow's C data interface, which data
 * frames and databases take as they are. No exception leaves these functions. Threads that use the
 * same file and its streams take turns; a file must not be closed while another thread uses it.
 * What a stream has handed out belongs to whoever took it.
 */
#ifndef MDF_READER_C_API_H_
#define MDF_READER_C_API_H_

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The structures of the Arrow C data interface, as everybody who uses it declares them. */
#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;
  void (*release)(struct ArrowSchema*);
  void* private_data;
};

struct ArrowArray {
  int64_t length;
  int64_t null_count;
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*);
  void* private_data;
};

#endif /* ARROW_C_DATA_INTERFACE */

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

struct ArrowArrayStream {
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  const char* (*get_last_error)(struct ArrowArrayStream*);
  void (*release)(struct ArrowArrayStream*);
  void* private_data;
};

#endif /* ARROW_C_STREAM_INTERFACE */

/** An open file. */
struct mdf_file;

/** The offset of an error that is about no place in a file. */
#define MDF_NO_OFFSET UINT64_MAX

/** Why a function failed. One that did not fail leaves "", MDF_NO_OFFSET and "".
 *
 * The code of a file that cannot be read is that of a finding, see `mdf check --codes`; the others
 * are "query-wrong", "cannot-decode", "argument-missing", "memory-missing" and "fault-inside".
 */
struct mdf_error {
  char code[64];   /**< a word that never changes, such as "not-mdf" */
  uint64_t offset; /**< in the file, where it is about a place there */
  char text[1024]; /**< a sentence in UTF-8; the end of a longer one is missing */
};

#ifndef __cplusplus
typedef struct mdf_file mdf_file;
typedef struct mdf_error mdf_error;
#endif

/* In all functions `error` may be null. Those that return a number return 0 when all went well. */

/** Opens a file and reads its description: all blocks but those with data.
 *
 * @param path the file's name; "-" is standard input, which is read into memory.
 * @param file is set to the open file, to be closed with mdf_close(), or to null.
 * @param error is set to why it failed.
 */
int mdf_open(const char* path, struct mdf_file** file, struct mdf_error* error);

/** Closes a file; null is nothing. Streams of it can still be read. */
void mdf_close(struct mdf_file* file);

/** What the file is and what is in it, as JSON in UTF-8.
 *
 * "schema" changes with the meaning of the members, "info" is what `mdf info --json` says of a
 * file; "channels", "attachments" and "events" have an object for each, as `mdf list channels
 * --json` and the like print it.
 *
 * @return a text to be given to mdf_free(); null on failure.
 */
char* mdf_describe(struct mdf_file* file, struct mdf_error* error);

/** What was found to be wrong so far, the first 1,000 of it: a JSON array of objects with "code",
 * "severity", "offset", "path" and "text", as `mdf check --json` prints them. It grows with what is
 * read.
 *
 * @return a text to be given to mdf_free(); null on failure.
 */
char* mdf_findings(struct mdf_file* file, struct mdf_error* error);

/** The data of an attachment that is in the file, uncompressed.
 *
 * @param file an open file.
 * @param index which of the attachments that mdf_describe() lists, from 0 on.
 * @param size is set to the number of bytes.
 * @param error is set to why it failed.
 * @return the bytes, to be given to mdf_free(); null on failure. Data that is cut off, or does not
 * have its digest, is a failure.
 */
char* mdf_attachment(struct mdf_file* file, uint64_t index, uint64_t* size,
                     struct mdf_error* error);

/** Frees what one of these functions returned; null is nothing. */
void mdf_free(char* text);

/** Reads channels of one channel group.
 *
 * The query is a JSON object. All members may be left out; others are an error.
 *
 * | Member     | Meaning |
 * |------------|---------|
 * | channels   | array of names or patterns as for file names: "speed*"; all channels without it |
 * | group      | number of the channel group, or a pattern of its name |
 * | element    | of an array whose elements have records of their own, the one with this number |
 * | from, to   | limits of the master channel's values |
 * | skip       | so many records that are left out, the group's first ones |
 * | first      | so many records of the others, the first ones |
 * | last       | the same of the last ones |
 * | stride     | of those, the first one and each so many-th after it |
 * | raw        | true: values as they are stored, without conversions |
 * | numbers    | true: where a conversion gives a text, the number that is stored |
 * | batch_rows | the most rows of a batch, 65,536 without it |
 * | threads    | that unzip data, as many as there are cores without it |
 * | times      | "seconds", or "timestamps": the master channel as the time of day |
 *
 * Channels of several groups are an error that names the groups, for a stream has one schema; so
 * are channels that the file does not have.
 *
 * Each batch is a structure with a field for each channel, the group's master channel first.
 * Integers, floating-point numbers, text (large UTF-8) and bytes (large binary) come as they are;
 * all can be null. A field's metadata has the "unit", the "comment", and the "conversion" as a line
 * of JSON, {"type":"linear","type_number":1,"values":[-40.0,0.5]}, as far as there are any: values
 * and "references" (texts, other conversions, null) stand in the order of the format. Timestamps
 * are nanoseconds since 1970 in the file's time zone ("+01:00"), in UTC where it states none, and
 * without a zone where it states local times.
 *
 * The stream can be read when the file is closed, and its arrays when the stream is released.
 *
 * @param file an open file.
 * @param query null for all channels of a file with one channel group.
 * @param stream is set to the stream, to be released by its own function. Its functions return 0,
 * or a number of errno.h, in which case its get_last_error() has a sentence. On failure its
 * `release` is null.
 * @param error is set to why it failed.
 */
int mdf_read(struct mdf_file* file, const char* query, struct ArrowArrayStream* stream,
             struct mdf_error* error);

/** Reads the frames of CAN and LIN buses, of all channel groups that hold such, in the order of
 * their times.
 *
 * Of the members of a query, "from", "to", "batch_rows" and "times" have the meaning that they have
 * in mdf_read(). The columns:
 *
 * | Column    | Type    | Meaning |
 * |-----------|---------|---------|
 * | time      | double  | seconds since the measurement was started, or a timestamp |
 * | bus       | text    | "can1" |
 * | frame     | text    | "data", "remote", "error", "overload", "lin", or a LIN error's name |
 * | id        | uint32  | identifier |
 * | extended  | uint8   | 1 for an identifier of 29 bits |
 * | direction | text    | "Rx" or "Tx" |
 * | fd, brs, esi | uint8 | 1 for CAN FD, its bit rate switch, its error state |
 * | error     | text    | "bit", "form", "stuffing", "crc" or "ack" |
 * | length    | uint64  | of the data, as the frame states it |
 * | data      | bytes   | as far as it was recorded |
 *
 * What a frame does not tell is null. Records without a valid time or identifier are left out. A
 * file without frames is an error.
 *
 * @param file an open file.
 * @param query null for all frames.
 * @param stream is set to the stream, as by mdf_read().
 * @param error is set to why it failed.
 */
int mdf_frames(struct mdf_file* file, const char* query, struct ArrowArrayStream* stream,
               struct mdf_error* error);

/** Makes signals of the frames of CAN buses, as databases of the DBC form describe them.
 *
 * The query is a JSON object: "databases" is an array of files, "car.dbc" or "car.dbc@can1" for one
 * bus, of which the first one that knows an identifier counts; "j1939" is true where the parameter
 * group is all that counts of each identifier of 29 bits. A file without frames is an error.
 *
 * @param file an open file.
 * @param query which databases.
 * @param signals is set to a file of its own, with a channel group for each message and bus, to be
 * closed with mdf_close(), or to null. It lies in $TMPDIR or /var/tmp until then.
 * @param report is set to what became of the frames, as JSON: "frames", "groups", "unknown_frames",
 * "unknown", "all_unknown_listed" and "other_frames" as `mdf decode --json` prints them, "faults"
 * of the databases with "path", "line", "column" and "text", and "notes" on frames that were left
 * out. It is to be given to mdf_free(). It may be null.
 * @param error is set to why it failed.
 */
int mdf_decode(struct mdf_file* file, const char* query, struct mdf_file** signals, char** report,
               struct mdf_error* error);

#ifdef __cplusplus
}
#endif

#endif /* MDF_READER_C_API_H_ */
