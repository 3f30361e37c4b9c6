// What docs/engines.md uses of Unity's shader library, with its names, for Direct3D 11.

#define UNITY_DECLARE_TEX2D(texture) Texture2D texture; SamplerState sampler##texture
#define UNITY_DECLARE_TEX2D_FLOAT(texture) Texture2D<float4> texture; SamplerState sampler##texture
#define UNITY_SAMPLE_TEX2D(texture, place) texture.Sample(sampler##texture, place)

struct v2f_img {
  float4 pos : SV_POSITION;
  float2 uv : TEXCOORD0;
};
