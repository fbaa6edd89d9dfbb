// Draws a page on a mesh or a RawImage: unlit, with the page's premultiplied alpha, and with its true colours in
// projects with linear colours, where the texture of a page (which is not marked as sRGB) would be too bright.
Shader "Zarvik/Web View"
{
    Properties
    {
        [PerRendererData] _MainTex ("Page", 2D) = "white" {}
        _Color ("Tint", Color) = (1, 1, 1, 1)

        // What a canvas asks of a shader.
        _StencilComp ("Stencil Comparison", Float) = 8
        _Stencil ("Stencil ID", Float) = 0
        _StencilOp ("Stencil Operation", Float) = 0
        _StencilWriteMask ("Stencil Write Mask", Float) = 255
        _StencilReadMask ("Stencil Read Mask", Float) = 255
        _ColorMask ("Color Mask", Float) = 15
    }

    SubShader
    {
        Tags { "Queue" = "Transparent" "RenderType" = "Transparent" "IgnoreProjector" = "True" }

        Stencil
        {
            Ref [_Stencil]
            Comp [_StencilComp]
            Pass [_StencilOp]
            ReadMask [_StencilReadMask]
            WriteMask [_StencilWriteMask]
        }

        Cull Off
        ZWrite Off
        ZTest [unity_GUIZTestMode]
        Blend One OneMinusSrcAlpha
        ColorMask [_ColorMask]

        Pass
        {
            CGPROGRAM
            #pragma vertex vert
            #pragma fragment frag
            #include "UnityCG.cginc"

            struct Input
            {
                float4 position : POSITION;
                float4 color : COLOR;
                float2 uv : TEXCOORD0;
                UNITY_VERTEX_INPUT_INSTANCE_ID
            };

            struct Varyings
            {
                float4 position : SV_POSITION;
                fixed4 color : COLOR;
                float2 uv : TEXCOORD0;
                UNITY_VERTEX_OUTPUT_STEREO
            };

            sampler2D _MainTex;
            float4 _MainTex_ST;
            fixed4 _Color;

            Varyings vert(Input input)
            {
                Varyings output;
                UNITY_SETUP_INSTANCE_ID(input);
                UNITY_INITIALIZE_VERTEX_OUTPUT_STEREO(output);
                output.position = UnityObjectToClipPos(input.position);
                output.uv = TRANSFORM_TEX(input.uv, _MainTex);
                output.color = input.color * _Color;
                return output;
            }

            fixed4 frag(Varyings input) : SV_Target
            {
                fixed4 page = tex2D(_MainTex, input.uv);
                #ifndef UNITY_COLORSPACE_GAMMA
                // The conversion is of plain colours, so the alpha is taken out for it.
                fixed alpha = max(page.a, 0.001);
                page.rgb = GammaToLinearSpace(page.rgb / alpha) * alpha;
                #endif
                return fixed4(page.rgb * input.color.rgb * input.color.a, page.a * input.color.a);
            }
            ENDCG
        }
    }
}
