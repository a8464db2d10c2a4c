#pragma once

#include <string>

namespace Vantor::Platform {

// What a person at this computer sees.

// A date of the calendar from 0001-01-01 on, in the short form that the user has chosen.
std::wstring FormatShortDate(int year, int month, int day);

// A time of day with its seconds, likewise.
std::wstring FormatLongTime(int hours, int minutes, int seconds);

// Shows a text in a box of its own and returns when the user has closed it. Where there is no such box, a
// line on standard error.
void ShowMessage(const std::wstring& title, const std::wstring& text);

}  // namespace Vantor::Platform
