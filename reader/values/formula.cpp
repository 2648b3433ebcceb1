#include "formula.h"

#include <muParser.h>

#include <cctype>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

namespace mdf_reader {

namespace {

/// Longer ones are not worth the parser's time.
constexpr std::size_t longest = 4096;

/// Whole numbers that a double holds exactly; functions of bits work on these.
std::int64_t integer(double number) {
  constexpr double exact = 9007199254740992.0;
  return std::abs(number) <= exact ? static_cast<std::int64_t>(number) : 0;
}

double shifted(double number, double places) {
  return std::abs(places) < 64
             ? std::trunc(std::ldexp(std::trunc(number), static_cast<int>(places)))
             : 0.0;
}

double bitAnd(double a, double b) { return static_cast<double>(integer(a) & integer(b)); }
double bitOr(double a, double b) { return static_cast<double>(integer(a) | integer(b)); }
double bitXor(double a, double b) { return static_cast<double>(integer(a) ^ integer(b)); }
double left(double a, double b) { return shifted(a, b); }
double right(double a, double b) {
  return std::abs(b) < 64 ? std::floor(std::ldexp(std::trunc(a), -static_cast<int>(b))) : 0.0;
}

double sine(double x) { return std::sin(x); }
double cosine(double x) { return std::cos(x); }
double tangent(double x) { return std::tan(x); }
double arcSine(double x) { return std::asin(x); }
double arcCosine(double x) { return std::acos(x); }
double arcTangent(double x) { return std::atan(x); }
double hyperbolicSine(double x) { return std::sinh(x); }
double hyperbolicCosine(double x) { return std::cosh(x); }
double hyperbolicTangent(double x) { return std::tanh(x); }
double exponential(double x) { return std::exp(x); }
double naturalLogarithm(double x) { return std::log(x); }
double commonLogarithm(double x) { return std::log10(x); }
double binaryLogarithm(double x) { return std::log2(x); }
double squareRoot(double x) { return std::sqrt(x); }
double absolute(double x) { return std::abs(x); }
double roundedDown(double x) { return std::floor(x); }
double roundedUp(double x) { return std::ceil(x); }
double roundedToZero(double x) { return std::trunc(x); }
double power(double x, double y) { return std::pow(x, y); }
double remainder(double x, double y) { return std::fmod(x, y); }

std::string capitals(std::string text) {
  for (char& letter : text) {
    letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  }
  return text;
}

template <class Function>
void define(mu::Parser& parser, const std::string& name, Function function) {
  parser.DefineFun(name, function);
  parser.DefineFun(capitals(name), function);
}

void defineFunctions(mu::Parser& parser) {
  using OfOne = double (*)(double);
  constexpr std::pair<const char*, OfOne> functions[] = {{"sin", sine},
                                                         {"cos", cosine},
                                                         {"tan", tangent},
                                                         {"asin", arcSine},
                                                         {"acos", arcCosine},
                                                         {"atan", arcTangent},
                                                         {"arcsin", arcSine},
                                                         {"arccos", arcCosine},
                                                         {"arctan", arcTangent},
                                                         {"sinh", hyperbolicSine},
                                                         {"cosh", hyperbolicCosine},
                                                         {"tanh", hyperbolicTangent},
                                                         {"exp", exponential},
                                                         {"ln", naturalLogarithm},
                                                         {"log", commonLogarithm},
                                                         {"log10", commonLogarithm},
                                                         {"log2", binaryLogarithm},
                                                         {"sqrt", squareRoot},
                                                         {"abs", absolute},
                                                         {"floor", roundedDown},
                                                         {"ceil", roundedUp},
                                                         {"trunc", roundedToZero}};
  for (const auto& [name, function] : functions) {
    define(parser, name, function);
  }
  define(parser, "pow", power);
  define(parser, "mod", remainder);
}

void defineOperators(mu::Parser& parser) {
  parser.DefineOprt("&", bitAnd, mu::prCMP, mu::oaLEFT);
  parser.DefineOprt("|", bitOr, mu::prCMP, mu::oaLEFT);
  parser.DefineOprt("XOR", bitXor, mu::prCMP, mu::oaLEFT);
  parser.DefineOprt("<<", left, mu::prMUL_DIV, mu::oaLEFT);
  parser.DefineOprt(">>", right, mu::prMUL_DIV, mu::oaLEFT);
}

}  // namespace

struct Formula::Parser {
  mu::Parser parser;
  double x = 1;
};

Formula::Formula(const std::string& text) : parser_(std::make_unique<Parser>()) {
  if (text.size() > longest) {
    problem_ = "a formula of " + std::to_string(text.size()) + " characters";
    return;
  }
  try {
    mu::Parser& parser = parser_->parser;
    defineFunctions(parser);
    defineOperators(parser);
    for (const char* name : {"X", "x", "X1", "x1"}) {
      parser.DefineVar(name, &parser_->x);
    }
    parser.DefineConst("pi", 3.14159265358979323846);
    parser.DefineConst("PI", 3.14159265358979323846);
    parser.SetExpr(text);
    parser.Eval();
  } catch (const mu::ParserError& error) {
    problem_ = error.GetMsg();
  }
}

Formula::~Formula() = default;

double Formula::at(double x) {
  parser_->x = x;
  try {
    return parser_->parser.Eval();
  } catch (const mu::ParserError&) {
    return std::numeric_limits<double>::quiet_NaN();
  }
}

}  // namespace mdf_reader
