#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>

#include "finding_check.h"
#include "memory_file.h"
#include "reader/c_api.h"
#include "reader/mdf_reader.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;

constexpr std::uint64_t most_visited = 10000;

void visitRecords(const Measurement& measurement) {
  for (const ChannelGroup& group : measurement.groups()) {
    std::uint64_t count = 0;
    measurement.forEachRecord(group, [&](std::string_view) { return ++count < most_visited; });
    const RecordCount stated = measurement.records(group);
    expect(!stated.is_counted || !stated.records || count <= *stated.records || group.element,
           "no more records than were counted");
  }
  std::uint64_t count = 0;
  Batches batches = measurement.read({});
  for (const Batch* batch = batches.next(); batch != nullptr && count < most_visited;
       batch = batches.next()) {
    std::string text;
    for (std::size_t i = 0; i < batch->columnCount(); ++i) {
      batch->column(i).print(batch->rows() - 1, text);
    }
    count += batch->rows();
  }
}

/// Reads a few batches of a stream, and releases all that it hands out.
void visitStream(ArrowArrayStream& stream) {
  ArrowSchema schema;
  expect(stream.get_schema(&stream, &schema) == 0, "a schema");
  ArrowArray batch;
  for (int count = 0; count < 10; ++count) {
    expect(stream.get_next(&stream, &batch) == 0, "a batch or the end");
    if (batch.release == nullptr) {
      break;
    }
    expect(batch.n_children == schema.n_children && batch.length > 0, "a column for each field");
    batch.release(&batch);
  }
  schema.release(&schema);
  stream.release(&stream);
}

/// What the C interface gives of the same file.
void visitByC(const char* path) {
  mdf_file* file = nullptr;
  expect(mdf_open(path, &file, nullptr) == 0, "a file that opens twice");
  char* const about = mdf_describe(file, nullptr);
  expect(about != nullptr, "a description");
  mdf_free(about);
  ArrowArrayStream stream;
  if (mdf_read(file, R"({"group": 0, "batch_rows": 100})", &stream, nullptr) == 0) {
    visitStream(stream);
  }
  if (mdf_frames(file, R"({"batch_rows": 100})", &stream, nullptr) == 0) {
    visitStream(stream);
  }
  std::uint64_t size = 0;
  mdf_free(mdf_attachment(file, 0, &size, nullptr));
  mdf_close(file);
}

void visitDescription(const Measurement& measurement, std::uint64_t size) {
  for (const Attachment& each : measurement.attachments()) {
    measurement.readAttachment(each, [](std::string_view) {});
  }
  for (const Event& each : measurement.events()) {
    expect(each.offset < size, "an event inside the file");
  }
  std::size_t depth = 0;
  for (const HierarchyEntry& each : measurement.hierarchy()) {
    expect(each.offset < size && each.depth <= depth + 1, "entries below the one before");
    depth = each.depth;
  }
  for (const HistoryEntry& each : measurement.history()) {
    expect(each.offset < size, "an entry of the history inside the file");
  }
  for (std::uint64_t offset = 0; offset <= size; offset += sizeof(std::uint64_t)) {
    const auto block = measurement.block(offset);
    expect(!block || block->links.size() <= size / sizeof(std::uint64_t),
           "no more links than the file has room for");
  }
}

}  // namespace

std::string tryMeasurement(std::string_view input) {
  static const MemoryFile memory;
  memory.hold(input);
  try {
    const Measurement measurement(memory.path());
    visitRecords(measurement);
    visitDescription(measurement, input.size());
    visitByC(memory.path().c_str());
    for (const Finding& finding : measurement.findings()) {
      expectSentence(finding, input.size());
    }
    return std::to_string(measurement.findingCount()) + " findings";
  } catch (const Unreadable&) {
    return "unreadable";
  }
}

}  // namespace mdf_fuzz
