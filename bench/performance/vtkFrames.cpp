// SPDX-License-Identifier: GPL-3.0-or-later
// vtkFrames POINTS FRAMES: draws a tube of VTK, a peer, with new data in every frame, and prints
// the seconds of a frame. It is given the samples of the centreline, ready-made.
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>

#include <vtkActor.h>
#include <vtkCellArray.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkTubeFilter.h>

namespace {

const int SUBSEGMENTS = 10, SIDES = 12; // those of the rod that it is compared with

// The helix of that rod.
vtkNew<vtkPoints> makeSamples(int points, double radius)
{
    vtkNew<vtkPoints> samples;
    samples->SetDataTypeToDouble();
    for (int i = 0; i <= SUBSEGMENTS * (points - 1); ++i) {
        const double t = 0.1 * i / SUBSEGMENTS;
        samples->InsertNextPoint(radius * std::cos(t), radius * std::sin(t), 0.1 * t);
    }
    return samples;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    const int points = std::atoi(argv[1]), frames = std::atoi(argv[2]);
    const vtkNew<vtkPoints> samples[] = {makeSamples(points, 1), makeSamples(points, 1.01)};
    const vtkIdType count = samples[0]->GetNumberOfPoints();
    vtkNew<vtkCellArray> line;
    line->InsertNextCell(count);
    for (vtkIdType i = 0; i < count; ++i)
        line->InsertCellPoint(i);
    vtkNew<vtkPolyData> curve;
    curve->SetPoints(samples[0]);
    curve->SetLines(line);
    vtkNew<vtkTubeFilter> tube;
    tube->SetInputData(curve);
    tube->SetNumberOfSides(SIDES);
    tube->CappingOn();
    tube->SetRadius(0.05);
    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputConnection(tube->GetOutputPort());
    vtkNew<vtkActor> actor;
    actor->SetMapper(mapper);
    vtkNew<vtkRenderer> renderer;
    renderer->AddActor(actor);
    vtkNew<vtkRenderWindow> window;
    window->SetOffScreenRendering(1);
    window->SetMultiSamples(0);
    window->SetSize(320, 240);
    window->AddRenderer(renderer);
    window->Render();
    window->Render();

    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < frames; ++i) {
        curve->SetPoints(samples[i % 2]);
        window->Render();
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    std::cout << seconds.count() / frames << "\n";
}
