// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/numpy/npyHeader.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>
#include <utility>

#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

constexpr char FOUND_OBJECTS[] =
    "found an array of objects, that is a pickle, which can run any program when it is opened, "
    "expected numbers; one that you trust is converted by Python: import numpy; data = "
    "numpy.load('run.npy', allow_pickle=True).item(); numpy.savez('run.npz', **data)";
constexpr char EXPECTED_DTYPE[] = ", expected '<f4', '<f8', '>f4' or '>f8'";
constexpr char EXPECTED_HEADER[] = "expected {'descr': ..., 'fortran_order': ..., 'shape': ...}";
constexpr std::size_t MOST_AXES = 32; ///< NumPy's own

std::uint64_t littleEndian(std::string_view bytes)
{
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        value = value * 256 + static_cast<unsigned char>(bytes[i]);
    return value;
}

/// The dictionary of a header, which is written as Python does it: of its literals those that
/// NumPy writes.
class HeaderText
{
public:
    explicit HeaderText(std::string_view wholeText) : text(wholeText) {}

    /// Takes a character if it comes next, behind blanks.
    bool take(char c)
    {
        skipBlanks();
        const bool isThere = !text.empty() && text.front() == c;
        text.remove_prefix(isThere);
        return isThere;
    }

    /// Between quotation marks of either kind, without escapes.
    std::optional<std::string_view> takeText()
    {
        skipBlanks();
        if (text.empty() || (text.front() != '\'' && text.front() != '"'))
            return {};
        const std::size_t end = text.find(text.front(), 1);
        if (end == text.npos)
            return {};
        const std::string_view inside = text.substr(1, end - 1);
        text.remove_prefix(end + 1);
        return inside;
    }

    std::optional<bool> takeTruth()
    {
        skipBlanks();
        for (const std::string_view word : {"True", "False"})
            if (text.substr(0, word.size()) == word) {
                text.remove_prefix(word.size());
                return word == "True";
            }
        return {};
    }

    std::optional<std::uint64_t> takeCount()
    {
        skipBlanks();
        std::uint64_t count = 0;
        const auto [stop, status] = std::from_chars(text.data(), text.data() + text.size(), count);
        if (status != std::errc())
            return {};
        text.remove_prefix(std::size_t(stop - text.data()));
        take('L'); // Python 2
        return count;
    }

    std::optional<std::vector<std::uint64_t>> takeShape()
    {
        if (!take('('))
            return {};
        std::vector<std::uint64_t> shape;
        while (!take(')')) {
            const std::optional<std::uint64_t> count = takeCount();
            if (!count || shape.size() == MOST_AXES)
                return {};
            shape.push_back(*count);
            if (!take(','))
                return take(')') ? std::optional(shape) : std::nullopt;
        }
        return shape;
    }

    std::string_view rest() const { return text; }

private:
    void skipBlanks() { text.remove_prefix(std::min(text.find_first_not_of(" \n"), text.size())); }

    std::string_view text;
};

std::string takeType(HeaderText& text, NpyHeader& header)
{
    const std::optional<std::string_view> type = text.takeText();
    if (!type)
        return "found dtype " + inQuotes(text.rest()) + EXPECTED_DTYPE;
    if (*type == "|O" || *type == "O")
        return std::string(FOUND_OBJECTS);
    if (type->size() != 3 || ((*type)[0] != '<' && (*type)[0] != '>') || (*type)[1] != 'f' ||
        ((*type)[2] != '4' && (*type)[2] != '8'))
        return "found dtype " + inQuotes(*type) + EXPECTED_DTYPE + " (array.astype('float64'))";
    header.isBigEndian = (*type)[0] == '>';
    header.itemSize = std::size_t((*type)[2] - '0');
    return {};
}

/// One key with its value; "?" for what is no dictionary.
std::string takeMember(HeaderText& text, NpyHeader& header, unsigned& seen)
{
    const std::optional<std::string_view> key = text.takeText();
    if (!key || !text.take(':'))
        return "?";
    if (*key == "descr") {
        seen |= 1;
        return takeType(text, header);
    }
    if (*key == "fortran_order") {
        seen |= 2;
        const std::optional<bool> order = text.takeTruth();
        header.isFortranOrder = order.value_or(false);
        return order ? "" : "?";
    }
    if (*key != "shape")
        return "?";
    seen |= 4;
    std::optional<std::vector<std::uint64_t>> shape = text.takeShape();
    header.shape = std::move(shape).value_or(header.shape);
    return shape ? "" : "?";
}

std::string parseDictionary(HeaderText text, NpyHeader& header)
{
    constexpr unsigned all = 7;
    unsigned seen = 0;
    std::string fault = text.take('{') ? "" : "?";
    while (fault.empty() && !text.take('}')) {
        fault = takeMember(text, header, seen);
        if (fault.empty() && !text.take(',')) {
            fault = text.take('}') ? "" : "?";
            break;
        }
    }
    return fault.empty() && seen != all ? "?" : fault;
}

std::string checkSize(const NpyHeader& header)
{
    constexpr std::uint64_t most = std::uint64_t(1) << 61;
    std::uint64_t count = 1;
    for (const std::uint64_t side : header.shape) {
        if (side > 0 && count > most / side)
            return "found shape " + shapeText(header.shape) +
                   ", expected one of at most 2^61 numbers";
        count *= side;
    }
    return {};
}

} // namespace

std::string parseNpyHeader(std::string_view beginning, NpyHeader& header)
{
    if (beginning.substr(0, NPY_MAGIC.size()) != NPY_MAGIC)
        return "found no array of NumPy, expected one";
    // The version, and the length of the text in two bytes, or in four from version 2 on.
    const unsigned version = beginning.size() > NPY_MAGIC.size()
                                 ? static_cast<unsigned char>(beginning[NPY_MAGIC.size()])
                                 : 1;
    if (version < 1 || version > 3)
        return "found version " + std::to_string(version) + " of the format, expected 1, 2 or 3";
    const std::size_t first = NPY_MAGIC.size() + 2, start = first + (version == 1 ? 2 : 4);
    const std::string_view length =
        beginning.substr(std::min(first, beginning.size()), start - first);
    if (length.size() < start - first || beginning.size() - start < littleEndian(length))
        return start + littleEndian(length) > LARGEST_NPY_HEADER
                   ? "found a header of " + std::to_string(littleEndian(length)) +
                         " bytes, expected fewer than 65536"
                   : "found the end within the header, expected an array";
    header = NpyHeader();
    header.dataOffset = start + littleEndian(length);
    const std::string_view text = beginning.substr(start, std::size_t(littleEndian(length)));
    const std::string fault = parseDictionary(HeaderText(text), header);
    if (fault == "?")
        return "found the header " + inQuotes(text) + ", " + EXPECTED_HEADER;
    return fault.empty() ? checkSize(header) : fault;
}

std::string shapeText(const std::vector<std::uint64_t>& shape)
{
    std::string text;
    for (const std::uint64_t side : shape)
        text += (text.empty() ? "" : ", ") + std::to_string(side);
    return "(" + text + (shape.size() == 1 ? ",)" : ")");
}

bool isPickle(std::string_view beginning)
{
    return beginning.size() > 2 && beginning[0] == '\x80' && beginning[1] >= 2 && beginning[1] <= 5;
}

std::string pickleRefusal()
{
    return "found a pickle, which can run any program when it is opened, expected .npy or .npz; "
           "one "
           "that you trust is converted by Python: import numpy, pickle; data = "
           "pickle.load(open('run.pkl', 'rb')); numpy.savez('run.npz', **data)";
}

} // namespace strandview
