// What a modem's answers mean. Answers are foreign text: of any length, with any bytes.
#pragma once

#include <string>
#include <string_view>

namespace zelto::mobile {

// The n-th field, from 1, of a text that commas divide. Fields in front of it must not be empty: at
// the first one that is, the modem did not say, and the result is empty.
std::string_view field(std::string_view answer, int n);

// The access technology in an answer to AT+COPS?; empty when it names none.
std::string technology_in(std::string_view answer);

bool is_5g(std::string_view technology);

// "5G", "4G", or "unknow" for an empty technology.
const char* network_name(std::string_view technology);

// The signal, a positive attenuation, that an answer to AT+CESQ tells for a technology.
int quality_signal(std::string_view answer, std::string_view technology);

// How the serving cell's signal is got from a modem that uses one technology.
struct CellQuery {
  const char* prefix;     // what is wanted of the answer, null for all of it
  const char* only_with;  // an answer without this text is not looked at; may be empty
  const char* from;       // where the fields begin; empty for the beginning
  int field;              // holds the received power in dBm, below 0
};
inline constexpr const char* kServingCell = "AT+QENG=\"SERVINGCELL\"";
const CellQuery& cell_query(std::string_view technology);
int cell_signal(std::string_view answer, const CellQuery& query);

// Bars, "1" to "5".
const char* bars(int signal);

// How the web pages call an operator of the table of access points; "unknow" for an empty name.
std::string_view service_name(std::string_view operator_name);

// The firmware revision in an answer to ATI that begins with "Revision:".
std::string_view revision_in(std::string_view answer);

}  // namespace zelto::mobile
