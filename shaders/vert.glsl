// Vertex stage of both programs: passes colour and texture place on, and for lighting
// the normal and the direction to the eye, both in eye space.

uniform int isPersp;  // the eye is at the camera, not infinitely far along +z
uniform int useLight; // only then are normal and eye of use

uniform mat4 ModelViewMatrix;
uniform mat4 ProjectionMatrix;
uniform mat4 NormalMatrix;

varying vec3 normal;
varying vec3 eye;
varying vec4 color;
varying vec2 texCoord;

void main()
{
    gl_Position = ftransform();
    color = gl_Color;
    texCoord = gl_MultiTexCoord0.st;

    normal = vec3(0.0, 0.0, 1.0);
    eye = vec3(0.0, 0.0, 1.0);
    if (useLight > 0) {
        normal = gl_NormalMatrix * gl_Normal;
        if (isPersp > 0)
            eye = -vec3(gl_ModelViewMatrix * gl_Vertex);
    }
}
