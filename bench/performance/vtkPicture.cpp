// SPDX-License-Identifier: GPL-3.0-or-later
// vtkPicture OUT.png TABLE SAMPLES [PICTURES]: the picture of a tube about the points of a table by
// VTK, a peer; three columns of each row are read. With a number of pictures as many of a tube that
// breathes, each in the place of the one before.
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <vtkActor.h>
#include <vtkCellArray.h>
#include <vtkNew.h>
#include <vtkPNGWriter.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkTubeFilter.h>
#include <vtkWindowToImageFilter.h>

#include "sampleTables.h"

namespace {

const int SUBSEGMENTS = 10, SIDES = 12; // those of strandview
const double RADII_ACROSS = 60;         // of the whole, about as strandview has it

vtkNew<vtkPoints> readPoints(const char* file)
{
    vtkNew<vtkPoints> points;
    std::ifstream table(file);
    double last[3] = {};
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        double point[3] = {};
        fields >> point[0] >> point[1] >> point[2];
        for (int i = points->GetNumberOfPoints() == 0 ? SUBSEGMENTS : 1; i <= SUBSEGMENTS; ++i) {
            const double part = double(i) / SUBSEGMENTS;
            points->InsertNextPoint(last[0] + part * (point[0] - last[0]),
                                    last[1] + part * (point[1] - last[1]),
                                    last[2] + part * (point[2] - last[2]));
        }
        std::copy_n(point, 3, last);
    }
    return points;
}

vtkNew<vtkPoints> resized(vtkPoints& points, double size)
{
    vtkNew<vtkPoints> result;
    for (vtkIdType i = 0; i < points.GetNumberOfPoints(); ++i) {
        double point[3];
        points.GetPoint(i, point);
        result->InsertNextPoint(size * point[0], size * point[1], size * point[2]);
    }
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4 && argc != 5)
        return 2;
    const int pictures = argc == 5 ? std::atoi(argv[4]) : 1;
    const vtkNew<vtkPoints> points = readPoints(argv[2]);
    vtkNew<vtkCellArray> line;
    line->InsertNextCell(points->GetNumberOfPoints());
    for (vtkIdType i = 0; i < points->GetNumberOfPoints(); ++i)
        line->InsertCellPoint(i);
    vtkNew<vtkPolyData> curve;
    curve->SetPoints(points);
    curve->SetLines(line);
    vtkNew<vtkTubeFilter> tube;
    tube->SetInputData(curve);
    tube->SetNumberOfSides(SIDES);
    tube->CappingOn();
    tube->SetRadius(curve->GetLength() / RADII_ACROSS);

    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputConnection(tube->GetOutputPort());
    vtkNew<vtkActor> actor;
    actor->SetMapper(mapper);
    actor->GetProperty()->SetColor(0.27, 0.51, 0.71);
    actor->GetProperty()->SetSpecular(0.5);
    actor->GetProperty()->SetSpecularPower(10);
    vtkNew<vtkRenderer> renderer;
    renderer->AddActor(actor);
    renderer->SetBackground(1, 1, 1);
    vtkNew<vtkRenderWindow> window;
    window->SetOffScreenRendering(1);
    window->SetMultiSamples(std::atoi(argv[3]) > 1 ? std::atoi(argv[3]) : 0);
    window->SetSize(1200, 900);
    window->AddRenderer(renderer);
    renderer->ResetCamera();

    vtkNew<vtkWindowToImageFilter> image;
    image->SetInput(window);
    image->ReadFrontBufferOff();
    image->ShouldRerenderOff();
    vtkNew<vtkPNGWriter> writer;
    writer->SetInputConnection(image->GetOutputPort());
    writer->SetFileName(argv[1]);
    for (int picture = 0; picture < pictures; ++picture) {
        const vtkNew<vtkPoints> moved = resized(*points, breathing(picture));
        curve->SetPoints(moved);
        window->Render();
        image->Modified();
        writer->Write();
    }
    return 0;
}
