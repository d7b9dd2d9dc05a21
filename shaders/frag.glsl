// Fragment stage of both programs: the vertex colour, blended with a texture if there
// is one, and lit by up to three directional lights after Phong.

uniform int useLight;
uniform vec3 lightDir[3];        // from the light to the scene, in eye space
uniform float lightIntensity[3]; // not above 0: the light is off
uniform float shininess[3];      // 0: no highlight

uniform vec4 lineColors[2];
uniform float margins[2];
uniform int numSteps[2];
uniform float steps[2];

uniform mat4 ModelViewMatrix;
uniform mat4 ProjectionMatrix;
uniform mat4 NormalMatrix;

uniform int useTexture;
uniform sampler2D texture1;

varying vec3 normal;
varying vec3 eye;
varying vec4 color;
varying vec2 texCoord;

const float ambient = 0.2;
const float diffuse = 0.8;
const float specular = 0.5;

void main()
{
    vec3 c = color.rgb;
    if (useTexture > 0) {
        vec4 t = texture2D(texture1, texCoord);
        c = t.rgb * t.a + c * (1.0 - t.a);
    }

    if (useLight > 0) {
        vec3 n = normalize(normal);
        if (!gl_FrontFacing)
            n = -n;
        vec3 e = normalize(eye);
        float d = 0.0;
        float s = 0.0;
        for (int i = 0; i < 3; ++i) {
            if (lightIntensity[i] > 0.0) {
                vec3 l = normalize(-lightDir[i]);
                float k = max(0.0, dot(n, l));
                d += diffuse * lightIntensity[i] * k;
                if (shininess[i] > 0.0 && k > 0.0) {
                    vec3 r = normalize(2.0 * k * n - l);
                    float h = max(0.0, dot(e, r));
                    if (h != 0.0)
                        s += specular * lightIntensity[i] * pow(h, shininess[i]);
                }
            }
        }
        c = (ambient + d) * c + vec3(s, s, s);
    }

    gl_FragColor = vec4(c, color.a);
}
