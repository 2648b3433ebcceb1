#include "../c_api.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "../measurement/measurement.h"
#include "../summary/json.h"
#include "arrow_stream.h"
#include "query_json.h"
#include "refused.h"

/// What C programs hold a pointer to.
struct mdf_file {
  mdf_reader::Measurement measurement;
};

namespace {

using namespace mdf_reader;

/// Copies as much as there is room for, whole characters of UTF-8.
template <std::size_t size>
void copy(std::string_view text, char (&to)[size]) {
  constexpr std::size_t most = size - 1;
  std::size_t count = std::min(text.size(), most);
  while (count > 0 && count < text.size() && (static_cast<unsigned char>(text[count]) >> 6U) == 2) {
    --count;
  }
  std::fill(std::copy_n(text.data(), count, to), to + size, '\0');
}

void tell(mdf_error* error, std::string_view code, std::uint64_t offset, std::string_view text) {
  if (error != nullptr) {
    copy(code, error->code);
    error->offset = offset;
    copy(text, error->text);
  }
}

/// Does one call; no exception may leave it.
template <class Work>
int guarded(mdf_error* error, const Work& work) {
  try {
    work();
    tell(error, "", MDF_NO_OFFSET, "");
    return 0;
  } catch (const Unreadable& unreadable) {
    tell(error, textOf(unreadable.finding().code).word, unreadable.finding().offset,
         unreadable.what());
  } catch (const Refused& refused) {
    tell(error, refused.code(), MDF_NO_OFFSET, refused.what());
  } catch (const std::bad_alloc&) {
    tell(error, "memory-missing", MDF_NO_OFFSET, "there is not enough memory");
  } catch (const std::exception& fault) {
    tell(error, "fault-inside", MDF_NO_OFFSET, fault.what());
  } catch (...) {
    tell(error, "fault-inside", MDF_NO_OFFSET, "an unknown fault");
  }
  return 1;
}

void expectArgument(const void* argument, const char* name) {
  if (argument == nullptr) {
    throw Refused("argument-missing", std::string("expected a ") + name + ", found a null pointer");
  }
}

char* copyOf(const std::string& text) {
  char* const copied = new char[text.size() + 1];
  *std::copy(text.begin(), text.end(), copied) = '\0';
  return copied;
}

Json asJson(const Finding& finding) {
  const CodeText& code = textOf(finding.code);
  return {{"code", code.word},
          {"severity", severityWord(code.severity)},
          {"offset", finding.offset},
          {"path", finding.path},
          {"text", finding.sentence}};
}

}  // namespace

int mdf_open(const char* path, mdf_file** file, mdf_error* error) {
  return guarded(error, [&] {
    expectArgument(file, "place for the file");
    *file = nullptr;
    expectArgument(path, "path");
    *file = new mdf_file{Measurement(path)};
  });
}

void mdf_close(mdf_file* file) { delete file; }

char* mdf_describe(mdf_file* file, mdf_error* error) {
  char* text = nullptr;
  guarded(error, [&] {
    expectArgument(file, "file");
    text = copyOf(file->measurement.describe());
  });
  return text;
}

char* mdf_findings(mdf_file* file, mdf_error* error) {
  char* text = nullptr;
  guarded(error, [&] {
    expectArgument(file, "file");
    Json list = Json::array();
    for (const Finding& finding : file->measurement.findings()) {
      list.push_back(asJson(finding));
    }
    text = copyOf(jsonLine(list));
  });
  return text;
}

void mdf_free(char* text) { delete[] text; }

int mdf_read(mdf_file* file, const char* query, ArrowArrayStream* stream, mdf_error* error) {
  return guarded(error, [&] {
    expectArgument(stream, "place for the stream");
    *stream = {};
    expectArgument(file, "file");
    exportStream(file->measurement, query == nullptr ? QueryText() : queryFrom(query), *stream);
  });
}
