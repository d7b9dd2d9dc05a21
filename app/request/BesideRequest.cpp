// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/BesideRequest.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace strandview {

std::string nameOfView(std::size_t index)
{
    const char* const names[] = {"first", "second", "third", "fourth"};
    static_assert(std::size(names) == BesideRequest::MOST + 1);
    return std::string(names[index]) + " view";
}

bool isFile(const std::string& what)
{
    return what != BesideRequest::FIRST_FRAME && what != BesideRequest::SAME;
}

BesideRequest besideOf(std::vector<std::string> what)
{
    const bool hasSame = std::find(what.begin(), what.end(), BesideRequest::SAME) != what.end();
    return {std::move(what), !hasSame};
}

BesideRequest fourOfTheSame()
{
    return besideOf(std::vector<std::string>(BesideRequest::MOST, BesideRequest::SAME));
}

BesideRequest withView(BesideRequest request, const std::string& what)
{
    if (request.what.empty())
        return besideOf({what});
    request.what.push_back(what);
    request.isTied = request.isTied && what != BesideRequest::SAME;
    return request;
}

BesideRequest withoutView(BesideRequest request, std::size_t index)
{
    request.what.erase(request.what.begin() + std::ptrdiff_t(index));
    if (index < request.cameras.size())
        request.cameras.erase(request.cameras.begin() + std::ptrdiff_t(index));
    return request.what.empty() ? BesideRequest() : request;
}

} // namespace strandview
