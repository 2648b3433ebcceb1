#include "frame_writer.h"

#include <cmath>
#include <string_view>

#include "printing/json_output.h"
#include "reader/bytes/number_texts.h"
#include "reader/columns/column_data.h"
#include "socket_can.h"

namespace mdf_tools {

namespace {

using Kind = BusFrame::Kind;

void addHex(std::string_view bytes, std::string& out, std::string_view between = "") {
  constexpr char digits[] = "0123456789ABCDEF";
  if (bytes.empty()) {
    return;
  }
  std::size_t at = out.size();
  out.resize(at + bytes.size() * (2 + between.size()) - between.size());
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    out[at++] = digits[byte >> 4U];
    out[at++] = digits[byte & 15U];
    at += at < out.size() ? between.copy(&out[at], between.size()) : 0;
  }
}

/// The text on the right of a field of so many characters, or on its left.
void addRight(std::string_view text, std::size_t width, std::string& out) {
  out.append(width - std::min(width, text.size()), ' ');
  out += text;
}
void addLeft(std::string_view text, std::size_t width, std::string& out) {
  out += text;
  out.append(width - std::min(width, text.size()), ' ');
}

/// What people want to know of a frame besides its data: "FD BRS", "remote", "error bit".
std::string flagText(const BusFrame& frame) {
  std::string text;
  const auto add = [&](bool is_so, std::string_view word) {
    if (is_so) {
      text += text.empty() ? "" : " ";
      text += word;
    }
  };
  add(frame.kind != Kind::data && frame.kind != Kind::lin, kindName(frame));
  add(frame.error != BusFrame::Error::unknown, errorName(frame));
  add(frame.is_fd, "FD");
  add(frame.has_bit_rate_switch, "BRS");
  add(frame.has_error_state, "ESI");
  return text;
}

const char* yesOrNo(bool is_so) { return is_so ? "true" : "false"; }

}  // namespace

std::optional<std::int64_t> nanosecondsOf(const BusFrame& frame,
                                          const std::optional<StoredTime>& start) {
  constexpr double most_seconds = 9e9;
  if (start) {
    return start->nanosecondsAfter(frame.time);
  }
  return std::abs(frame.time) < most_seconds ? std::optional(std::llround(frame.time * 1e9))
                                             : std::nullopt;
}

bool TextFrameWriter::add(const BusFrame& frame, std::string& out) {
  std::string time;
  form_.printTime(frame.time, frame.time_decimals, time);
  addRight(time, 14, out);
  out += "  ";
  addLeft(frame.bus, 8, out);
  addRight(idText(frame), 8, out);
  out += "  ";
  addLeft(directionName(frame), 4, out);
  addLeft(flagText(frame), 8, out);
  out += " [";
  addRight(std::to_string(frame.length), 2, out);
  out += frame.data.empty() ? "]" : "]  ";
  addHex(frame.data, out, " ");
  out += '\n';
  return true;
}

void CsvFrameWriter::begin(std::string& out) {
  out += form_.time == ValueForm::Time::seconds ? "time [s]" : "time";
  out += ",bus,frame,id,extended,direction,fd,brs,esi,error,length,data\n";
}

bool CsvFrameWriter::add(const BusFrame& frame, std::string& out) {
  form_.printTime(frame.time, frame.time_decimals, out);
  const auto addField = [&](std::string_view text) {
    out += ',';
    out += text;
  };
  addField(frame.bus);
  addField(kindName(frame));
  addField(idText(frame));
  addField(frame.hasId() ? frame.is_extended ? "1" : "0" : "");
  addField(directionName(frame));
  addField(frame.is_fd ? "1" : "0");
  addField(frame.has_bit_rate_switch ? "1" : "0");
  addField(frame.has_error_state ? "1" : "0");
  addField(errorName(frame));
  addField(std::to_string(frame.length));
  out += ',';
  addHex(frame.data, out);
  out += '\n';
  return true;
}

JsonFrameWriter::JsonFrameWriter(const std::string& file, ValueForm form)
    : beginning_("{\"schema\":" + std::to_string(json_schema) +
                 ",\"file\":" + jsonLine(textOrNull(file)) + ",\"time\":"),
      form_(form) {}

bool JsonFrameWriter::add(const BusFrame& frame, std::string& out) {
  out += beginning_;
  const bool is_text = form_.time == ValueForm::Time::iso && form_.start &&
                       form_.start->nanosecondsAfter(frame.time);
  out += is_text ? "\"" : "";
  form_.printTime(frame.time, frame.time_decimals, out);
  out += is_text ? "\"" : "";
  const auto addText = [&](const char* name, std::string_view text) {
    out.append(",\"").append(name).append("\":");
    out += text.empty() ? std::string("null") : '"' + std::string(text) + '"';
  };
  addText("bus", frame.bus);
  addText("frame", kindName(frame));
  out += ",\"id\":" + (frame.hasId() ? std::to_string(frame.id) : "null");
  addText("hex", idText(frame));
  out.append(",\"extended\":").append(frame.hasId() ? yesOrNo(frame.is_extended) : "null");
  addText("direction", directionName(frame));
  out.append(",\"fd\":").append(yesOrNo(frame.is_fd));
  out.append(",\"brs\":").append(yesOrNo(frame.has_bit_rate_switch));
  out.append(",\"esi\":").append(yesOrNo(frame.has_error_state));
  addText("error", errorName(frame));
  out += ",\"length\":" + std::to_string(frame.length) + ",\"data\":\"";
  addHex(frame.data, out);
  out += "\"}\n";
  return true;
}

bool CandumpWriter::add(const BusFrame& frame, std::string& out) {
  const auto nanoseconds = nanosecondsOf(frame, start_);
  const auto socket = socketCanOf(frame);
  if (!socket || !nanoseconds || *nanoseconds < 0) {
    return false;
  }
  // Rounded, since seconds as floating-point numbers may lie below the microsecond that they mean.
  const std::int64_t microseconds = *nanoseconds / 1000 + (*nanoseconds % 1000 >= 500 ? 1 : 0);
  out += '(';
  addDigits(static_cast<std::uint64_t>(microseconds / 1000000), 10, out);
  out += '.';
  addDigits(static_cast<std::uint64_t>(microseconds % 1000000), 6, out);
  out += ") ";
  out += frame.bus;
  out += ' ';
  const bool is_remote = (socket->id & SocketCanFrame::remote) != 0;
  if (frame.hasId()) {
    out += idText(frame);
  } else {
    addHexDigits(socket->id, 8, out);
  }
  out += '#';
  if (socket->is_fd) {
    out += '#';
    addHexDigits(socket->fd_flags, 1, out);
  }
  if (is_remote) {
    out += 'R';
    out += socket->length > 0 ? std::to_string(socket->length) : "";
  }
  addHex(socket->data, out);
  out += '\n';
  return true;
}

}  // namespace mdf_tools
