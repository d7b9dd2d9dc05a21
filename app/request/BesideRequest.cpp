// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/BesideRequest.h"

#include <algorithm>
#include <utility>

namespace strandview {

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
    return request.what.empty() ? BesideRequest() : request;
}

} // namespace strandview
