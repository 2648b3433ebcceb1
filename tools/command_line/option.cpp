#include "option.h"

#include <CLI/CLI.hpp>

namespace mdf_tools {

namespace {

void narrow(CLI::Option& option, const CLI::Validator& range) {
  CLI::Validator& check = *option.get_validator(0);
  check = check & range;
}

}  // namespace

Option& Option::typeName(const std::string& word) {
  option_->type_name(word);
  return *this;
}

Option& Option::check(const Check& problem) {
  option_->check(problem);
  return *this;
}

Option& Option::transform(const std::function<std::string(std::string&)>& problem) {
  option_->transform(CLI::Validator(problem, ""));
  return *this;
}

Option& Option::oneOf(const std::vector<std::string>& values) {
  option_->check(CLI::IsMember(values));
  return *this;
}

Option& Option::choice(const std::vector<std::string>& values) {
  option_->check(CLI::IsMember(values))->option_text(CLI::detail::join(values, "|"));
  return *this;
}

Option& Option::existingFolder() {
  option_->check(CLI::ExistingDirectory);
  return *this;
}

Option& Option::within(int least, int most) {
  narrow(*option_, CLI::Range(least, most));
  return *this;
}

Option& Option::within(std::size_t least, std::size_t most) {
  narrow(*option_, CLI::Range(least, most));
  return *this;
}

Option& Option::positive() {
  narrow(*option_, CLI::PositiveNumber);
  return *this;
}

Option& Option::notNegative() {
  narrow(*option_, CLI::NonNegativeNumber);
  return *this;
}

Option& Option::silent() {
  option_->get_validator(0)->description("");
  return *this;
}

Option& Option::required(bool is_required) {
  option_->required(is_required);
  return *this;
}

Option& Option::excludes(const Option& other) {
  option_->excludes(other.option_);
  return *this;
}

Option& Option::needs(const Option& other) {
  option_->needs(other.option_);
  return *this;
}

Option& Option::delimiter(char between) {
  option_->delimiter(between);
  return *this;
}

Option& Option::oneEachTime() {
  option_->allow_extra_args(false);
  return *this;
}

Option& Option::showDefault() {
  option_->capture_default_str();
  return *this;
}

Option& Option::showDefault(const std::string& text) {
  option_->default_str(text);
  return *this;
}

std::vector<std::string> Option::names() const {
  std::vector<std::string> names;
  for (const std::string& name : option_->get_lnames()) {
    names.push_back("--" + name);
  }
  for (const std::string& name : option_->get_snames()) {
    names.push_back("-" + name);
  }
  return names;
}

std::string Option::description() const { return option_->get_description(); }

std::string Option::type() const { return option_->get_type_name(); }

bool Option::takesValue() const { return option_->get_items_expected_max() > 0; }

bool Option::isGiven() const { return option_->count() > 0; }

}  // namespace mdf_tools
