/* Reads files by the C interface alone, as a program in C does: consumer FOLDER writes some files
 * of its own to the folder, and compares what comes of them with what it should be. */

#include <mdf_reader/c_api.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "test_file.h"

static int failures = 0;

/* Says where a text is not the one that was expected. */
static void expectText(int line, const char* expected, const char* found) {
  if (strcmp(expected, found) != 0) {
    printf("consumer.c:%d: expected\n%s\nfound\n%s\n", line, expected, found);
    ++failures;
  }
}
#define EXPECT_TEXT(expected, found) expectText(__LINE__, expected, found)

static void expectTrue(int line, const char* condition, int is_true) {
  if (!is_true) {
    printf("consumer.c:%d: expected %s\n", line, condition);
    ++failures;
  }
}
#define EXPECT(condition) expectTrue(__LINE__, #condition, condition)

/* A text that grows. */
struct Text {
  char bytes[8192];
  size_t size;
};

static void add(struct Text* text, const char* format, ...) {
  va_list values;
  va_start(values, format);
  {
    const size_t left = sizeof text->bytes - text->size;
    const int count = vsnprintf(text->bytes + text->size, left, format, values);
    if (count < 0 || (size_t)count >= left) {
      puts("consumer.c: a text is too long");
      abort();
    }
    text->size += (size_t)count;
  }
  va_end(values);
}

/* "unit=s", for all entries of the metadata. */
static void addMetadata(struct Text* text, const char* metadata) {
  int32_t count = 0;
  int32_t length = 0;
  int32_t i;
  if (metadata == NULL) {
    return;
  }
  memcpy(&count, metadata, sizeof count);
  metadata += sizeof count;
  for (i = 0; i < 2 * count; ++i) {
    memcpy(&length, metadata, sizeof length);
    metadata += sizeof length;
    add(text, "%s%.*s", i % 2 == 0 ? " " : "=", (int)length, metadata);
    metadata += length;
  }
}

/* A line for each field. */
static void addSchema(struct Text* text, const struct ArrowSchema* schema) {
  int64_t i;
  add(text, "%s \"%s\" %d\n", schema->format, schema->name, (int)schema->flags);
  for (i = 0; i < schema->n_children; ++i) {
    const struct ArrowSchema* field = schema->children[i];
    add(text, "%s %s %d", field->format, field->name, (int)field->flags);
    addMetadata(text, field->metadata);
    add(text, "\n");
  }
}

static void addBytes(struct Text* text, const char* format, const struct ArrowArray* array,
                     int64_t row) {
  const int64_t* offsets = (const int64_t*)array->buffers[1];
  const unsigned char* bytes = (const unsigned char*)array->buffers[2];
  int64_t at;
  for (at = offsets[row]; at < offsets[row + 1]; ++at) {
    add(text, format[0] == 'U' ? "%c" : "%02x", bytes[at]);
  }
}

static void addValue(struct Text* text, const char* format, const struct ArrowArray* array,
                     int64_t row) {
  const uint8_t* validity = (const uint8_t*)array->buffers[0];
  const void* values = array->buffers[1];
  if (validity != NULL && (validity[row / 8] >> (row % 8) & 1) == 0) {
    add(text, "null");
    return;
  }
  switch (format[0]) {
    case 'C':
      add(text, "%d", ((const uint8_t*)values)[row]);
      break;
    case 's':
      add(text, "%d", ((const int16_t*)values)[row]);
      break;
    case 'I':
      add(text, "%x", (unsigned)((const uint32_t*)values)[row]);
      break;
    case 'L':
      add(text, "%u", (unsigned)((const uint64_t*)values)[row]);
      break;
    case 't':
      add(text, "%lld", (long long)((const int64_t*)values)[row]);
      break;
    case 'f':
      add(text, "%g", (double)((const float*)values)[row]);
      break;
    case 'g':
      add(text, "%g", ((const double*)values)[row]);
      break;
    case 'U':
    case 'Z':
      addBytes(text, format, array, row);
      break;
    default:
      add(text, "?");
  }
}

/* A line for each row, and one with the numbers of nulls. */
static void addRows(struct Text* text, const struct ArrowSchema* schema,
                    const struct ArrowArray* array) {
  int64_t row;
  int64_t i;
  for (row = 0; row < array->length; ++row) {
    for (i = 0; i < array->n_children; ++i) {
      add(text, i == 0 ? "" : ";");
      addValue(text, schema->children[i]->format, array->children[i], row);
    }
    add(text, "\n");
  }
  add(text, "nulls");
  for (i = 0; i < array->n_children; ++i) {
    add(text, " %d", (int)array->children[i]->null_count);
  }
  add(text, "\n");
}

/* All that a stream has, which is released. */
static void addStream(struct Text* text, struct ArrowArrayStream* stream) {
  struct ArrowSchema schema;
  struct ArrowArray array;
  EXPECT(stream->get_schema(stream, &schema) == 0);
  addSchema(text, &schema);
  EXPECT(stream->get_next(stream, &array) == 0);
  while (array.release != NULL) {
    addRows(text, &schema, &array);
    array.release(&array);
    EXPECT(array.release == NULL);
    EXPECT(stream->get_next(stream, &array) == 0);
  }
  EXPECT(stream->get_next(stream, &array) == 0 && array.release == NULL);
  EXPECT(stream->get_last_error(stream) == NULL);
  schema.release(&schema);
  EXPECT(schema.release == NULL);
  stream->release(stream);
  EXPECT(stream->release == NULL);
}

static char path[4096];

static mdf_file* opened(const char* folder, enum TestFile which) {
  mdf_file* file = NULL;
  mdf_error error;
  snprintf(path, sizeof path, "%s/c_api.mf4", folder);
  EXPECT(writeTestFile(path, which));
  EXPECT(mdf_open(path, &file, &error) == 0);
  EXPECT_TEXT("", error.code);
  EXPECT_TEXT("", error.text);
  EXPECT(error.offset == MDF_NO_OFFSET);
  return file;
}

static struct ArrowArrayStream streamOf(mdf_file* file, const char* query) {
  struct ArrowArrayStream stream;
  mdf_error error;
  EXPECT(mdf_read(file, query, &stream, &error) == 0);
  EXPECT_TEXT("", error.text);
  return stream;
}

static void expectStream(int line, mdf_file* file, const char* query, const char* expected) {
  struct ArrowArrayStream stream = streamOf(file, query);
  struct Text text = {"", 0};
  addStream(&text, &stream);
  expectText(line, expected, text.bytes);
}

static void readsAllTypes(const char* folder) {
  mdf_file* file = opened(folder, whole_file);
  expectStream(__LINE__, file, "{\"group\": 0}",
               "+s \"\" 0\n"
               "g time 2 unit=s\n"
               "f rpm 2 unit=1/min comment=of the crankshaft\n"
               "s gear 2\n"
               "g oil 2 unit=\xc2\xb0"
               "C conversion={\"type\":\"linear\",\"type_number\":1,\"values\":[-40.0,0.5]}\n"
               "U state 2 conversion={\"type\":\"value to text\",\"type_number\":7,"
               "\"values\":[0.0,1.0],\"references\":[\"off\",\"run\",\"fault\"]}\n"
               "U note 2\n"
               "Z key 2\n"
               "0;800;1;0;off;ab;0102\n"
               "0.5;1200.5;null;0.5;run;;ff00\n"
               "1;-0.5;-1;-40;fault;\xc3\xa4;null\n"
               "1.5;3;null;87.5;off;abcd;null\n"
               "2;0.25;-300;5;run;z;0708\n"
               "nulls 0 0 2 0 0 0 2\n");
  expectStream(__LINE__, file, "{\"channels\": [\"oil\", \"state\"], \"raw\": true, \"to\": 0.5}",
               "+s \"\" 0\n"
               "g time 2 unit=s\n"
               "C oil 2 unit=\xc2\xb0"
               "C conversion={\"type\":\"linear\",\"type_number\":1,\"values\":[-40.0,0.5]}\n"
               "C state 2 conversion={\"type\":\"value to text\",\"type_number\":7,"
               "\"values\":[0.0,1.0],\"references\":[\"off\",\"run\",\"fault\"]}\n"
               "0;80;0\n"
               "0.5;81;1\n"
               "nulls 0 0 0\n");
  mdf_close(file);
}

static void readsInBatches(const char* folder) {
  mdf_file* file = opened(folder, whole_file);
  expectStream(__LINE__, file,
               "{\"channels\": [\"g*\", \"state\"], \"group\": \"eng*\", \"from\": 0.5, \"to\": 2,"
               " \"numbers\": true, \"times\": \"seconds\", \"batch_rows\": 3}",
               "+s \"\" 0\n"
               "g time 2 unit=s\n"
               "s gear 2\n"
               "g state 2 conversion={\"type\":\"value to text\",\"type_number\":7,"
               "\"values\":[0.0,1.0],\"references\":[\"off\",\"run\",\"fault\"]}\n"
               "0.5;null;1\n"
               "1;-1;7\n"
               "1.5;null;0\n"
               "nulls 0 2 0\n"
               "2;-300;1\n"
               "nulls 0 0 0\n");
  expectStream(__LINE__, file,
               "{\"channels\": [\"gear\"], \"group\": 0, \"skip\": 2, \"first\": 3, \"stride\": 2}",
               "+s \"\" 0\n"
               "g time 2 unit=s\n"
               "s gear 2\n"
               "1;-1\n"
               "2;-300\n"
               "nulls 0 0\n");
  expectStream(__LINE__, file, "{\"channels\": [\"rpm\"], \"from\": 7}",
               "+s \"\" 0\n"
               "g time 2 unit=s\n"
               "f rpm 2 unit=1/min comment=of the crankshaft\n");
  mdf_close(file);
}

static void readsTimestamps(const char* folder) {
  const char* query = "{\"channels\": [\"gear\"], \"to\": 0.5, \"times\": \"timestamps\"}";
  mdf_file* file = opened(folder, whole_file);
  expectStream(__LINE__, file, query,
               "+s \"\" 0\n"
               "tsn:+01:00 time 2 unit=s\n"
               "s gear 2\n"
               "1600000000000000000;1\n"
               "1600000000500000000;null\n"
               "nulls 0 1\n");
  mdf_close(file);
  file = opened(folder, local_time_file);
  expectStream(__LINE__, file, query,
               "+s \"\" 0\n"
               "tsn: time 2 unit=s\n"
               "s gear 2\n"
               "1600000000000000000;1\n"
               "1600000000500000000;null\n"
               "nulls 0 1\n");
  mdf_close(file);
}

/* A stream that is moved, whose file is closed, and whose arrays last longer than itself. */
static void movesAndOutlives(const char* folder) {
  mdf_file* file = opened(folder, whole_file);
  struct ArrowArrayStream stream = streamOf(file, "{\"channels\": [\"note\"], \"batch_rows\": 2}");
  struct ArrowArrayStream moved = stream;
  struct ArrowSchema schema;
  struct ArrowArray first;
  struct ArrowArray second;
  struct ArrowArray note;
  struct ArrowSchema note_schema;
  struct Text text = {"", 0};
  stream.release = NULL;
  mdf_close(file);
  EXPECT(moved.get_schema(&moved, &schema) == 0);
  EXPECT(moved.get_next(&moved, &first) == 0);
  EXPECT(moved.get_next(&moved, &second) == 0);
  moved.release(&moved);
  EXPECT(moved.release == NULL);
  addRows(&text, &schema, &second);
  addRows(&text, &schema, &first);

  /* A column without the others, and a field without its schema. */
  note = *second.children[1];
  second.children[1]->release = NULL;
  second.release(&second);
  note_schema = *schema.children[1];
  schema.children[1]->release = NULL;
  schema.release(&schema);
  first.release(&first);
  addValue(&text, note_schema.format, &note, 0);
  add(&text, "\n");
  addValue(&text, note_schema.format, &note, 1);
  note.release(&note);
  note_schema.release(&note_schema);
  EXPECT_TEXT(
      "1;\xc3\xa4\n1.5;abcd\nnulls 0 0\n0;ab\n0.5;\nnulls 0 0\n\xc3\xa4\n"
      "abcd",
      text.bytes);
}

static void releasesInTheMiddle(const char* folder) {
  mdf_file* file = opened(folder, whole_file);
  struct ArrowArrayStream unread = streamOf(file, "{\"group\": 1}");
  struct ArrowArrayStream begun = streamOf(file, "{\"group\": 0, \"batch_rows\": 1}");
  struct ArrowArrayStream other = streamOf(file, "{\"group\": 0, \"batch_rows\": 4}");
  struct ArrowArray array;
  struct Text text = {"", 0};
  EXPECT(begun.get_next(&begun, &array) == 0);
  EXPECT(array.length == 1 && array.n_children == 7);
  unread.release(&unread);
  begun.release(&begun);
  mdf_close(file);
  array.release(&array);
  EXPECT(other.get_next(&other, &array) == 0);
  EXPECT(array.length == 4);
  array.release(&array);
  addStream(&text, &other);
  EXPECT(strstr(text.bytes, "\n2;0.25;-300;5;run;z;0708\nnulls 0 0 0 0 0 0 0\n") != NULL);
}

static void expectRefusal(int line, mdf_file* file, const char* query, const char* sentence) {
  struct ArrowArrayStream stream;
  mdf_error error;
  expectTrue(line, "a failure", mdf_read(file, query, &stream, &error) != 0);
  expectTrue(line, "no stream", stream.release == NULL);
  expectTrue(line, "no offset", error.offset == MDF_NO_OFFSET);
  expectText(line, "query-wrong", error.code);
  expectText(line, sentence, error.text);
}

static void refusesQueries(const char* folder) {
  static const char* const refusals[][2] = {
      {"{\"channels\":", "expected the query to be JSON, found a mistake at byte 13"},
      {"[]", "expected the query to be a JSON object, found []"},
      {"{\"to\": 1e999}",
       "expected numbers in the query that 64 bits can hold, found a larger one"},
      {"{\"chanels\": []}",
       "expected members \"channels\", \"group\", \"element\", \"from\", \"to\", \"skip\", "
       "\"first\", \"last\", \"stride\", \"raw\", \"numbers\", \"batch_rows\", \"threads\" "
       "and \"times\" in the query, found \"chanels\""},
      {"{\"channels\": \"rpm\"}",
       "expected \"channels\" of the query to be an array of names, found \"rpm\""},
      {"{\"channels\": [\"rpm\", 1]}",
       "expected \"channels\" of the query to be an array of names, found [\"rpm\",1]"},
      {"{\"group\": -1}", "expected \"group\" of the query to be a number or a name, found -1"},
      {"{\"element\": \"0\"}",
       "expected \"element\" of the query to be a number from 0 on, found \"0\""},
      {"{\"from\": \"1\"}", "expected \"from\" of the query to be a number, found \"1\""},
      {"{\"raw\": 1}", "expected \"raw\" of the query to be true or false, found 1"},
      {"{\"batch_rows\": 0}",
       "expected \"batch_rows\" of the query to be a number from 1 on, found 0"},
      {"{\"stride\": 0}",
       "expected \"stride\" of the query to be a number of records from 1 on, found 0"},
      {"{\"times\": \"iso\"}",
       "expected \"times\" of the query to be \"seconds\" or \"timestamps\", found \"iso\""},
      {"{}",
       "expected channels of one channel group, found them in 0 \"engine\", 1 \"body\"; choose one "
       "by \"group\""},
      {"{\"channels\": [\"rpm\", \"level\"]}",
       "expected channels of one channel group, found them in 0 \"engine\", 1 \"body\"; choose one "
       "by \"group\""},
      {"{\"channels\": [\"speed\"]}", "no channel matches \"speed\""},
      {"{\"channels\": [\"rpm\", \"speed\"]}",
       "no channel of channel group 0 \"engine\" matches \"speed\""},
      {"{\"group\": 2}", "no channel group fits the query"},
      {"{\"group\": 1, \"from\": 1}",
       "no channel group fits the query; \"from\" and \"to\" need a master channel"},
      {"{\"group\": 1, \"times\": \"timestamps\"}",
       "channel group 1 \"body\" has no master channel with times to be shown as timestamps"}};
  mdf_file* file = opened(folder, whole_file);
  size_t i;
  for (i = 0; i < sizeof refusals / sizeof refusals[0]; ++i) {
    expectRefusal(__LINE__, file, refusals[i][0], refusals[i][1]);
  }
  expectRefusal(__LINE__, file, NULL,
                "expected channels of one channel group, found them in 0 \"engine\", 1 \"body\"; "
                "choose one by \"group\"");
  EXPECT(mdf_read(file, "{", &(struct ArrowArrayStream){0}, NULL) != 0);
  mdf_close(file);
  file = opened(folder, timeless_file);
  expectRefusal(__LINE__, file, "{\"group\": 0, \"times\": \"timestamps\"}",
                "the file does not state when it starts, so there are no timestamps");
  mdf_close(file);
}

static void readsAnElement(const char* folder) {
  mdf_file* file = opened(folder, array_file);
  expectStream(__LINE__, file, "{\"element\": 1}",
               "+s \"\" 0\n"
               "C v[1] 2\n"
               "C last 2\n"
               "66;98\n"
               "nulls 0 0\n");
  expectRefusal(__LINE__, file, "{\"group\": 0}",
                "expected channels of one channel group, found them in 0 element 0, 0 element 1; "
                "choose one by \"element\"");
  expectRefusal(__LINE__, file, "{\"element\": 2}", "no channel group fits the query");
  mdf_close(file);
}

static const char* const frame_fields =
    "U bus 2\nU frame 2\nI id 2\nC extended 2\nU direction 2\nC fd 2\nC brs 2\nC esi 2\n"
    "U error 2\nL length 2\nZ data 2\n";

static void expectFrames(int line, mdf_file* file, const char* query, const char* time,
                         const char* rows) {
  struct ArrowArrayStream stream;
  struct Text text = {"", 0};
  struct Text expected = {"", 0};
  mdf_error error;
  expectTrue(line, "frames", mdf_frames(file, query, &stream, &error) == 0);
  expectText(line, "", error.text);
  addStream(&text, &stream);
  add(&expected, "+s \"\" 0\n%s time 2 unit=s\n%s%s", time, frame_fields, rows);
  expectText(line, expected.bytes, text.bytes);
}

static void refusesFrames(mdf_file* file, const char* query, const char* sentence) {
  struct ArrowArrayStream stream;
  mdf_error error;
  EXPECT(mdf_frames(file, query, &stream, &error) != 0);
  EXPECT(stream.release == NULL);
  EXPECT_TEXT("query-wrong", error.code);
  EXPECT_TEXT(sentence, error.text);
}

static void readsFrames(const char* folder) {
  mdf_file* file = opened(folder, bus_file);
  expectFrames(__LINE__, file, NULL, "g",
               "0.5;can1;data;123;0;Tx;0;0;0;null;3;0102ff\n"
               "1;can2;remote;7ff;0;Rx;0;0;0;null;8;\n"
               "2;can1;data;18fef100;1;Rx;1;1;0;null;12;000000000000000000000000\n"
               "nulls 0 0 0 0 0 0 0 0 0 3 0 0\n");
  expectFrames(__LINE__, file, "{\"from\": 1, \"batch_rows\": 1, \"times\": \"timestamps\"}",
               "tsn:+01:00",
               "1600000001000000000;can2;remote;7ff;0;Rx;0;0;0;null;8;\n"
               "nulls 0 0 0 0 0 0 0 0 0 1 0 0\n"
               "1600000002000000000;can1;data;18fef100;1;Rx;1;1;0;null;12;"
               "000000000000000000000000\n"
               "nulls 0 0 0 0 0 0 0 0 0 1 0 0\n");
  refusesFrames(file, "{\"channels\": []}",
                "expected members \"from\", \"to\", \"batch_rows\" and \"times\" in a query of "
                "frames, found \"channels\"");
  mdf_close(file);
  file = opened(folder, whole_file);
  refusesFrames(file, NULL, "no channel group holds frames of CAN or LIN");
  mdf_close(file);
}

/* The query of a database that has a message of the file, and a fault in its third line. */
static const char* databaseQuery(const char* folder) {
  static char query[4200];
  FILE* database;
  snprintf(path, sizeof path, "%s/c_api.dbc", folder);
  database = fopen(path, "w");
  EXPECT(fputs("BO_ 291 Engine: 3 ECU\n"
               " SG_ Speed : 0|16@1+ (0.5,0) [0|0] \"rpm\" ECU\n"
               " SG_ Level : 16|8@1+ (1,0) [0|0] ECU\n",
               database) >= 0);
  EXPECT(fclose(database) == 0);
  snprintf(query, sizeof query, "{\"databases\": [\"%s@can1\"], \"j1939\": false}", path);
  return query;
}

static void decodesFrames(const char* folder) {
  mdf_file* file = opened(folder, bus_file);
  mdf_file* signals = NULL;
  mdf_error error;
  char* report = NULL;
  char expected[4600];
  EXPECT(mdf_decode(file, databaseQuery(folder), &signals, &report, &error) == 0);
  EXPECT_TEXT("", error.text);
  snprintf(
      expected, sizeof expected,
      "{\"frames\":1,\"groups\":1,\"unknown_frames\":1,\"unknown\":[{\"bus\":\"can1\","
      "\"id\":419361024,\"hex\":\"18FEF100\",\"extended\":true,\"frames\":1}],"
      "\"all_unknown_listed\":true,\"other_frames\":1,\"faults\":[{\"path\":\"%s\","
      "\"line\":3,\"column\":34,\"text\":\"expected a unit in quotation marks, found 'ECU'\"}],"
      "\"notes\":[]}",
      path);
  EXPECT_TEXT(expected, report);
  mdf_free(report);
  mdf_close(file);
  expectStream(__LINE__, signals, NULL,
               "+s \"\" 0\n"
               "g time 2 unit=s\n"
               "g Speed 2 unit=rpm conversion={\"type\":\"linear\",\"type_number\":1,"
               "\"values\":[0.0,0.5]}\n"
               "0.5;256.5\n"
               "nulls 0 0\n");
  mdf_close(signals);
}

static void refusesDecoding(int line, mdf_file* file, const char* query, const char* code,
                            const char* sentence) {
  mdf_file* signals = file;
  mdf_error error;
  expectTrue(line, "a failure", mdf_decode(file, query, &signals, NULL, &error) != 0);
  expectTrue(line, "no signals", signals == NULL);
  expectText(line, code, error.code);
  expectText(line, sentence, error.text);
}

static void decodesWhatItCan(const char* folder) {
  mdf_file* file = opened(folder, whole_file);
  const char* const query = databaseQuery(folder);
  char expected[4200];
  refusesDecoding(__LINE__, file, query, "cannot-decode",
                  "no channel group holds frames of CAN or LIN");
  refusesDecoding(__LINE__, file, NULL, "argument-missing",
                  "expected a query, found a null pointer");
  refusesDecoding(__LINE__, file, "{}", "query-wrong",
                  "expected databases in a query of signals, found none");
  refusesDecoding(__LINE__, file, "{\"dbc\": 1}", "query-wrong",
                  "expected members \"databases\" and \"j1939\" in a query of signals, found "
                  "\"dbc\"");
  EXPECT(remove(path) == 0);
  snprintf(expected, sizeof expected, "cannot open %s: No such file or directory", path);
  refusesDecoding(__LINE__, file, query, "cannot-decode", expected);
  mdf_close(file);
}

static void expectNoData(int line, mdf_file* file, uint64_t index, const char* code,
                         const char* sentence) {
  uint64_t size = 0;
  mdf_error error;
  expectTrue(line, "no data", mdf_attachment(file, index, &size, &error) == NULL);
  expectText(line, code, error.code);
  expectText(line, sentence, error.text);
}

static void readsAttachments(const char* folder) {
  mdf_file* file = opened(folder, bus_file);
  mdf_error error;
  uint64_t size = 0;
  char* data = mdf_attachment(file, 0, &size, &error);
  EXPECT(size == 3 && memcmp(data, "a\0b", 4) == 0);
  mdf_free(data);
  expectNoData(
      __LINE__, file, 1, "attachment-digest-wrong",
      "expected the data of attachment 1 as it was embedded, found another MD5 digest than "
      "stated");
  expectNoData(__LINE__, file, 2, "query-wrong", "the attachment's data is not in the file");
  expectNoData(__LINE__, file, 3, "query-wrong",
               "expected the number of an attachment, of which there are 3, found 3");
  EXPECT(mdf_attachment(file, 0, NULL, &error) == NULL);
  EXPECT_TEXT("expected a place for the size, found a null pointer", error.text);
  data = mdf_describe(file, NULL);
  EXPECT(strstr(data, "\"attachments\": [\n    {\n      \"offset\": ") != NULL);
  EXPECT(strstr(data,
                "\"name\": \"map.txt\",\n      \"mime_type\": \"\",\n"
                "      \"original_size\": 3,\n") != NULL);
  EXPECT(strstr(data, "\n      \"position\": 2.0,\n      \"unit\": \"s\",\n") != NULL);
  mdf_free(data);
  mdf_close(file);
}

static void expectUnreadable(int line, const char* code, const char* begin, const char* end) {
  mdf_file* file = NULL;
  mdf_error error;
  char expected[4200];
  snprintf(expected, sizeof expected, "%s%s%s", begin, path, end);
  expectTrue(line, "a failure", mdf_open(path, &file, &error) != 0);
  expectTrue(line, "no file", file == NULL);
  expectTrue(line, "the beginning", error.offset == 0);
  expectText(line, code, error.code);
  expectText(line, expected, error.text);
}

static void refusesFiles(const char* folder) {
  mdf_file* file = NULL;
  mdf_error error;
  snprintf(path, sizeof path, "%s/c_api_text.mf4", folder);
  EXPECT(writeTestFile(path, no_file_of_mdf));
  expectUnreadable(__LINE__, "not-mdf", "",
                   ": this is not an MDF file: it begins with \"time;rpm\"");
  snprintf(path, sizeof path, "%s/there is none", folder);
  expectUnreadable(__LINE__, "request-failed", "cannot open ", ": No such file or directory");
  EXPECT(mdf_open(NULL, &file, &error) != 0);
  EXPECT_TEXT("argument-missing", error.code);
  EXPECT_TEXT("expected a path, found a null pointer", error.text);
  EXPECT(mdf_describe(NULL, &error) == NULL);
  EXPECT_TEXT("expected a file, found a null pointer", error.text);
  mdf_close(NULL);
  mdf_free(NULL);
}

static void describes(const char* folder) {
  mdf_file* file = opened(folder, whole_file);
  mdf_error error;
  char* text = mdf_describe(file, &error);
  EXPECT(strncmp(text, "{\n  \"schema\": 2,\n  \"info\": {\n    \"file\": \"", 42) == 0);
  EXPECT(strstr(text, "\n    \"program\": \"testprog\",\n") != NULL);
  EXPECT(strstr(text, "\n        \"name\": \"engine\",\n") != NULL);
  EXPECT(strstr(text,
                "\n      \"name\": \"oil\",\n      \"unit\": \"\xc2\xb0"
                "C\",\n      \"type\": \"fixed\",\n") != NULL);
  EXPECT(strstr(text, "\n      \"name\": \"level\",\n") != NULL);
  mdf_free(text);
  mdf_close(file);
}

static void findsWhatIsWrong(const char* folder) {
  mdf_file* file = opened(folder, torn_file);
  struct ArrowArrayStream stream;
  char* text = mdf_findings(file, NULL);
  EXPECT_TEXT("[]", text);
  mdf_free(text);
  stream = streamOf(file, "{\"channels\": [\"gear\"], \"from\": 1.5}");
  {
    struct Text rows = {"", 0};
    addStream(&rows, &stream);
    EXPECT_TEXT("+s \"\" 0\ng time 2 unit=s\ns gear 2\n1.5;null\nnulls 0 1\n", rows.bytes);
  }
  text = mdf_findings(file, NULL);
  EXPECT_TEXT(
      "[{\"code\":\"cycle-count-wrong\",\"severity\":\"error\",\"offset\":2136,\"path\":\"\","
      "\"text\":\"expected data for 5 records of 23 bytes, found 112 bytes; 20 bytes were not "
      "read\"}]",
      text);
  mdf_free(text);
  mdf_close(file);
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fputs("Usage: consumer FOLDER\n", stderr);
    return 2;
  }
  readsAllTypes(argv[1]);
  readsInBatches(argv[1]);
  readsTimestamps(argv[1]);
  movesAndOutlives(argv[1]);
  releasesInTheMiddle(argv[1]);
  readsAnElement(argv[1]);
  refusesQueries(argv[1]);
  readsFrames(argv[1]);
  decodesFrames(argv[1]);
  decodesWhatItCan(argv[1]);
  readsAttachments(argv[1]);
  refusesFiles(argv[1]);
  describes(argv[1]);
  findsWhatIsWrong(argv[1]);
  printf("%d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
