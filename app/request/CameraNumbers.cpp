// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/CameraNumbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>
#include <vector>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

const char* const ORTHOGRAPHIC = "orthographic";
const char* const PERSPECTIVE = "perspective";
// By how much the norm of a unit quaternion of floats differs from 1.
const double ROUNDING = 5e-7;

std::vector<std::string> split(const std::string& text)
{
    std::vector<std::string> parts;
    std::istringstream stream(text + ","); // so that an empty last part counts
    for (std::string part; std::getline(stream, part, ',');)
        parts.push_back(part);
    return parts;
}

bool parseNumber(const std::string& text, float& number)
{
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end && std::isfinite(number);
}

// Shortest, and back the same.
std::string shortest(float number)
{
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
}

algebra3d::Quaternion<double> orientationOf(const CameraNumbers& camera)
{
    const auto& [x, y, z, w] = camera.orientation;
    return {double(x), double(y), double(z), double(w)};
}

// Of numbers that are no camera's, what would be; or nothing.
std::string whatIsNeeded(const CameraNumbers& camera)
{
    const algebra3d::Quaternion<double> orientation = orientationOf(camera);
    if (!algebra3d::isRotation(orientation))
        return "a unit quaternion in the numbers 4 to 7, theirs has the norm " +
               shortest(float(orientation.getNorm()));
    if (!(camera.focalDistance > 0))
        return "a focal distance, number 8, above 0";
    if (!(camera.size > 0))
        return "a size, number 9, above 0";
    if (camera.perspective && !(camera.size < M_PI))
        return "an angle, number 9, below pi: radians";
    return "";
}

} // namespace

bool operator==(const CameraNumbers& a, const CameraNumbers& b)
{
    return a.perspective == b.perspective && a.position == b.position &&
           a.orientation == b.orientation && a.focalDistance == b.focalDistance && a.size == b.size;
}

std::string formatCamera(const CameraNumbers& camera)
{
    std::string text = camera.perspective ? PERSPECTIVE : ORTHOGRAPHIC;
    const auto append = [&text](float number) { text += "," + shortest(number); };
    std::for_each(camera.position.begin(), camera.position.end(), append);
    std::for_each(camera.orientation.begin(), camera.orientation.end(), append);
    append(camera.focalDistance);
    append(camera.size);
    return text;
}

std::optional<CameraNumbers> parseCamera(const std::string& text, std::string* expected)
{
    const auto refuse = [expected](const std::string& what) {
        if (expected)
            *expected = what;
        return std::nullopt;
    };
    const std::vector<std::string> parts = split(text);
    std::array<float, 9> numbers{};
    bool isCamera =
        parts.size() == 1 + numbers.size() && (parts[0] == ORTHOGRAPHIC || parts[0] == PERSPECTIVE);
    for (std::size_t i = 0; isCamera && i < numbers.size(); ++i)
        isCamera = parseNumber(parts[1 + i], numbers[i]);
    if (!isCamera)
        return refuse("the text that --print-camera gave: orthographic or perspective and "
                      "9 numbers, with commas");

    CameraNumbers camera;
    camera.perspective = parts[0] == PERSPECTIVE;
    std::copy_n(numbers.begin(), 3, camera.position.begin());
    std::copy_n(numbers.begin() + 3, 4, camera.orientation.begin());
    camera.focalDistance = numbers[7];
    camera.size = numbers[8];
    const std::string needed = whatIsNeeded(camera);
    if (!needed.empty())
        return refuse(needed);
    const double norm = orientationOf(camera).getNorm();
    if (std::abs(norm - 1) > ROUNDING) {
        for (float& component : camera.orientation)
            component = float(component / norm);
    }
    return camera;
}

} // namespace strandview
