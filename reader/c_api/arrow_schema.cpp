#include "arrow_schema.h"

#include <cstdint>
#include <cstring>
#include <memory>

namespace mdf_reader {

namespace {

/// What a schema points to. Its children may be moved away, and last on their own.
struct SchemaOwner {
  SchemaOwner(ArrowField its_field, std::size_t child_count)
      : field(std::move(its_field)), children(child_count) {
    for (ArrowSchema& child : children) {
      pointers.push_back(&child);
    }
  }
  ~SchemaOwner() {
    for (ArrowSchema& child : children) {
      if (child.release != nullptr) {
        child.release(&child);
      }
    }
  }
  SchemaOwner(const SchemaOwner&) = delete;
  SchemaOwner& operator=(const SchemaOwner&) = delete;

  ArrowField field;
  std::vector<ArrowSchema> children;
  std::vector<ArrowSchema*> pointers;
};

void release(ArrowSchema* schema) {
  const std::unique_ptr<SchemaOwner> owner(static_cast<SchemaOwner*>(schema->private_data));
  schema->release = nullptr;
}

void handOver(std::unique_ptr<SchemaOwner> owner, std::int64_t flags, ArrowSchema& out) {
  out = {};
  out.format = owner->field.format.c_str();
  out.name = owner->field.name.c_str();
  out.metadata = owner->field.metadata.empty() ? nullptr : owner->field.metadata.data();
  out.flags = flags;
  out.n_children = static_cast<std::int64_t>(owner->children.size());
  out.children = owner->pointers.data();
  out.release = release;
  out.private_data = owner.release();
}

void appendNumber(std::size_t number, std::string& bytes) {
  const auto stored = static_cast<std::int32_t>(number);
  bytes.append(sizeof stored, '\0');
  std::memcpy(bytes.data() + bytes.size() - sizeof stored, &stored, sizeof stored);
}

}  // namespace

std::string arrowFormat(ColumnType type) {
  switch (type) {
    case ColumnType::uint8:
      return "C";
    case ColumnType::uint16:
      return "S";
    case ColumnType::uint32:
      return "I";
    case ColumnType::uint64:
      return "L";
    case ColumnType::int8:
      return "c";
    case ColumnType::int16:
      return "s";
    case ColumnType::int32:
      return "i";
    case ColumnType::int64:
      return "l";
    case ColumnType::float32:
      return "f";
    case ColumnType::float64:
      return "g";
    case ColumnType::text:
      return "U";
    case ColumnType::bytes:
      break;
  }
  return "Z";
}

std::string arrowMetadata(const std::vector<std::pair<std::string, std::string>>& entries) {
  std::string bytes;
  if (entries.empty()) {
    return bytes;
  }
  appendNumber(entries.size(), bytes);
  for (const auto& [key, value] : entries) {
    appendNumber(key.size(), bytes);
    bytes += key;
    appendNumber(value.size(), bytes);
    bytes += value;
  }
  return bytes;
}

void exportSchema(const std::vector<ArrowField>& fields, ArrowSchema& out) {
  auto owner = std::make_unique<SchemaOwner>(ArrowField{"", "+s", ""}, fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    handOver(std::make_unique<SchemaOwner>(fields[i], 0), ARROW_FLAG_NULLABLE, owner->children[i]);
  }
  handOver(std::move(owner), 0, out);
}

}  // namespace mdf_reader
