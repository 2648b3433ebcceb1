#include "../c_api.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "../measurement/measurement.h"
#include "../model/attachment_reading.h"
#include "../summary/decoded_json.h"
#include "../summary/json.h"
#include "arrow_stream.h"
#include "query_json.h"
#include "refused.h"

/// What C programs hold a pointer to.
struct mdf_file {
  mdf_reader::SharedFile shared;
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
  } catch (const CannotDecode& failure) {
    tell(error, "cannot-decode", MDF_NO_OFFSET, failure.what());
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

/// Does one call about a file, when it is its turn.
template <class Work>
int guarded(mdf_file* file, mdf_error* error, const Work& work) {
  return guarded(error, [&] {
    expectArgument(file, "file");
    const std::lock_guard<std::mutex> turn(*file->shared.turn);
    work(file->shared);
  });
}

char* copyOf(const std::string& text) {
  char* const copied = new char[text.size() + 1];
  *std::copy(text.begin(), text.end(), copied) = '\0';
  return copied;
}

Json asJson(const DecodedSignals& decoded) {
  Json report = decodedAsJson(decoded.frames);
  Json& faults = report["faults"] = Json::array();
  for (const DatabaseFault& fault : decoded.faults) {
    faults.push_back({{"path", fault.path},
                      {"line", fault.line},
                      {"column", fault.column},
                      {"text", fault.sentence}});
  }
  report["notes"] = decoded.notes;
  return report;
}

Json asJson(const Finding& finding) {
  const CodeText& code = textOf(finding.code);
  return {{"code", code.word},
          {"severity", severityWord(code.severity)},
          {"offset", finding.offset},
          {"path", finding.path},
          {"text", finding.sentence}};
}

/// Does one call that sets a stream; on failure it is none.
template <class Work>
int exported(mdf_file* file, ArrowArrayStream* stream, mdf_error* error, const Work& work) {
  if (stream != nullptr) {
    *stream = {};
  }
  return guarded(file, error, [&](const SharedFile& shared) {
    expectArgument(stream, "place for the stream");
    work(shared);
  });
}

/// The data of an attachment.
std::string dataOf(const Measurement& measurement, std::uint64_t index) {
  const std::vector<Attachment> attachments = measurement.attachments();
  if (index >= attachments.size()) {
    throw Refused("query-wrong", "expected the number of an attachment, of which there are " +
                                     std::to_string(attachments.size()) + ", found " +
                                     std::to_string(index));
  }
  const Attachment& attachment = attachments[static_cast<std::size_t>(index)];
  if (!attachment.is_embedded) {
    throw Refused("query-wrong", "the attachment's data is not in the file");
  }
  std::string data;
  const auto damage = damageOf(
      measurement.readAttachment(attachment, [&](std::string_view bytes) { data += bytes; }));
  if (damage) {
    const std::string sentence = "expected the data of attachment " + std::to_string(index) +
                                 " as it was embedded, " + damage->found;
    throw Unreadable(sentence, {damage->code, attachment.offset, sentence});
  }
  return data;
}

}  // namespace

int mdf_open(const char* path, mdf_file** file, mdf_error* error) {
  return guarded(error, [&] {
    expectArgument(file, "place for the file");
    *file = nullptr;
    expectArgument(path, "path");
    *file = new mdf_file{{Measurement(path)}};
  });
}

void mdf_close(mdf_file* file) { delete file; }

char* mdf_describe(mdf_file* file, mdf_error* error) {
  char* text = nullptr;
  guarded(file, error,
          [&](const SharedFile& shared) { text = copyOf(shared.measurement.describe()); });
  return text;
}

char* mdf_findings(mdf_file* file, mdf_error* error) {
  char* text = nullptr;
  guarded(file, error, [&](const SharedFile& shared) {
    Json list = Json::array();
    for (const Finding& finding : shared.measurement.findings()) {
      list.push_back(asJson(finding));
    }
    text = copyOf(jsonLine(list));
  });
  return text;
}

char* mdf_attachment(mdf_file* file, uint64_t index, uint64_t* size, mdf_error* error) {
  char* bytes = nullptr;
  guarded(file, error, [&](const SharedFile& shared) {
    expectArgument(size, "place for the size");
    const std::string data = dataOf(shared.measurement, index);
    bytes = copyOf(data);
    *size = data.size();
  });
  return bytes;
}

void mdf_free(char* text) { delete[] text; }

int mdf_read(mdf_file* file, const char* query, ArrowArrayStream* stream, mdf_error* error) {
  return exported(file, stream, error, [&](const SharedFile& shared) {
    exportStream(shared, query == nullptr ? QueryText() : queryFrom(query), *stream);
  });
}

int mdf_frames(mdf_file* file, const char* query, ArrowArrayStream* stream, mdf_error* error) {
  return exported(file, stream, error, [&](const SharedFile& shared) {
    exportFrames(shared, query == nullptr ? QueryText() : frameQueryFrom(query), *stream);
  });
}

int mdf_decode(mdf_file* file, const char* query, mdf_file** signals, char** report,
               mdf_error* error) {
  if (signals != nullptr) {
    *signals = nullptr;
  }
  return guarded(file, error, [&](const SharedFile& shared) {
    expectArgument(query, "query");
    expectArgument(signals, "place for the signals");
    const DecodingText text = decodingFrom(query);
    DecodedSignals decoded = shared.measurement.decode(text.databases, text.is_j1939);
    const std::string about = jsonLine(asJson(decoded));
    auto opened = std::make_unique<mdf_file>(mdf_file{{std::move(decoded.signals)}});
    if (report != nullptr) {
      *report = copyOf(about);
    }
    *signals = opened.release();
  });
}
