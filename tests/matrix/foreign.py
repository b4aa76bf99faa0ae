"""Faults that other programs make, with their own filters: FFmpeg's, GStreamer's elements, melt's.

A row's expectation is what the filter's manual says that it does.
"""

import os
import shutil

from cells import Frames, Near, Text
from clips import RATE

# Runs gst-launch-1.0; where that is not installed, its own name says so.
PIPELINE = (os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support", "run-pipeline")
            if shutil.which("gst-launch-1.0") else "gst-launch-1.0")

# FFmpeg's filters keep tags or lose them; these rows are about codes, so the tags are said again.
TAGS = ("-color_primaries", "bt709", "-color_trc", "bt709", "-colorspace", "bt709", "-color_range", "tv")
LOSSLESS = ("-c:v", "ffv1", "-c:a", "flac")


class Foreign:
    """@param command  its words; {in} is the clip as a lossless movie, {out} the movie to be judged"""

    def __init__(self, name, tool, clip, command, expect, inside=None, options=(), extension=".mkv"):
        self.name = name
        self.clip = clip
        self.command = [tool, *command]
        self.expect = expect
        self.inside = inside or {}
        self.options = list(options)
        self.extension = extension

    def make(self, tools, base):
        # The chart is float R'G'B', which filters of Y'CbCr codes take as v210.
        kind, codec = (".mov", "v210") if self.clip == "chart" else (".mkv", "ffv1")
        clip, sent, returned = tools.clip(self.clip), base + ".sent" + kind, base + self.extension
        try:
            tools.render(clip, sent, ("--video-codec", codec))
            tools.make([word.replace("{in}", sent).replace("{out}", returned) for word in self.command])
        finally:
            tools.remove(sent)
        return clip, returned


def ffmpeg(name, clip, arguments, expect, **more):
    return Foreign(name, "ffmpeg", clip, ["-v", "error", "-y", "-i", "{in}", *arguments, *LOSSLESS, "{out}"], expect,
                   **more)


def picture(name, clip, video_filter, expect, tags=TAGS, **more):
    return ffmpeg(name, clip, ["-vf", video_filter, *tags], expect, **more)


def sound(name, clip, audio_filter, expect, **more):
    return ffmpeg(name, clip, ["-af", audio_filter, "-c:v", "copy"], expect, **more)


def chart(name, video_filter, expect):
    return picture(name, "chart", video_filter, expect, options=("--accept", "container.alpha"))


def rgb(name, video_filter, expect):
    return picture(name, "rgb", video_filter, expect, tags=())


ORDER = " ".join(map(str, [*range(10), 11, 10, *range(12, 30)]))

FFMPEG = [
    picture("colormatrix 709 to 601", "planar", "colormatrix=bt709:bt601", {"color.matrix": Text("BT.601")}),
    picture("colorspace 709 to 601", "gradient", "colorspace=space=smpte170m:primaries=bt709:trc=bt709:iall=bt709,"
            "setparams=colorspace=bt709",
            {"color.matrix": Text("BT.601")}),
    picture("scale in_range full out_range limited", "gradient", "scale=in_range=full:out_range=limited",
            {"color.range": Text("squeezed")}),
    picture("scale in_range limited out_range full", "gradient", "scale=in_range=limited:out_range=full",
            {"color.range": Text("expanded")}),
    picture("setparams range", "gradient", "setparams=range=full", {"container.range": None},
            tags=(*TAGS[:6], "-color_range", "pc")),
    picture("setparams colorspace", "gradient", "setparams=colorspace=smpte170m", {"container.matrix": None},
            tags=("-colorspace", "smpte170m"), inside={"container.matrix": ["color.matrix"]}),
    picture("setparams color_primaries", "gradient", "setparams=color_primaries=bt2020", {"container.primaries": None},
            tags=("-color_primaries", "bt2020")),
    picture("setparams color_trc", "gradient", "setparams=color_trc=smpte2084", {"container.transfer": None},
            tags=("-color_trc", "smpte2084")),
    picture("setfield tff", "gradient", "setfield=tff", {"container.fields": None},
            tags=(*TAGS, "-field_order", "tt")),
    picture("setsar", "gradient", "setsar=4/3", {"container.aspect": Text("4/3")}),
    picture("swapuv", "gradient", "swapuv", {"color.chroma-swapped": None}),
    rgb("colorchannelmixer", "colorchannelmixer=rr=0:rb=1:br=1:bb=0", {"color.channels": Text("B'G'R'")}),
    rgb("shuffleplanes", "format=gbrp,shuffleplanes=1:0:2:3", {"color.channels": None}),
    picture("hue h", "gradient", "hue=h=12", {"color.hue": None}),
    picture("hue s", "gradient", "hue=s=0.8", {"color.saturation": Near(0.8, 0.005)}),
    # 48 of 876 codes in 10 bits are 12 of 219.
    picture("lutyuv offset", "gradient", "lutyuv=y=val+48", {"color.offset": Near(12, 0.1)}),
    picture("lutyuv gain", "gradient", "lutyuv=y=64+(val-64)*0.9", {"color.gain": Near(0.9, 0.002)}),
    # With more threads FFmpeg 5.1 puts what the second one made into wrong rows (docs/field-report.md).
    picture("colorlevels", "rgb", "colorlevels=romax=0.9:gomax=0.9:bomax=0.9", {"color.gain": Near(0.9, 0.004)},
            tags=("-filter_threads", "1")),
    rgb("lutrgb gammaval", "format=gbrp,lutrgb=r=gammaval(0.4545):g=gammaval(0.4545):b=gammaval(0.4545)",
        {"color.transfer": Text("gamma 2.2")}),
    chart("limiter", "limiter=min=64:max=940:planes=1", {"color.clipped": None}),
    chart("format 4:2:0 and back", "format=yuv420p10le,format=yuv422p10le", {"color.subsampling": None}),
    picture("format 8 bits and back", "gradient", "format=yuv422p,format=yuv422p10le", {"color.depth": Near(8)}),
    chart("chromashift", "chromashift=cbh=2:crh=2:edge=smear", {"color.siting": None}),
    picture("lutrgb opaque", "alpha", "lutrgb=a=maxval", {"color.alpha": None}, tags=()),
    picture("premultiply", "alpha", "format=gbrap,premultiply=inplace=1", {"color.alpha": None}, tags=()),
    # Order and time.
    picture("select", "gradient", f"select='not(between(n,12,13))',setpts=N/{RATE}/TB",
            {"order.missing": Frames(12, 13, Near(2))}),
    picture("shuffleframes", "gradient", f"shuffleframes={ORDER}", {"order.swapped": Frames(10, 11)}),
    picture("reverse", "gradient", "reverse", {"order.reversed": None}),
    picture("loop", "gradient", f"loop=loop=3:size=1:start=10,setpts=N/{RATE}/TB", {"order.repeated": Near(3)}),
    picture("tpad start", "gradient", "tpad=start=4", {"order.inserted": Near(4)}),
    picture("tpad stop clone", "gradient", "tpad=stop=3:stop_mode=clone", {"order.repeated": Near(3)}),
    picture("freezeframes", "gradient", "split[a][b];[a][b]freezeframes=first=11:last=14:replace=10",
            {"order.frozen": Frames(11, 14, Near(4))}),
    picture("trim start", "gradient", "trim=start_frame=5,setpts=PTS-STARTPTS", {"order.head": Frames(0, 4)}),
    picture("trim end", "gradient", "trim=end_frame=25", {"order.tail": Frames(25, 29)}),
    picture("fps 30", "gradient", f"settb=1/{RATE},setpts=N,fps=30", {"order.cadence": Near(1.25, 0.01)}),
    picture("framerate", "gradient", "framerate=30", {"order.cadence": Near(1.25, 0.01)}),
    picture("framestep", "stereo", "framestep=2", {"order.cadence": Near(0.5, 0.01)}),
    picture("telecine", "stereo", "telecine=pattern=23", {"order.cadence": None}),
    picture("setpts", "gradient", f"setpts='(N+floor(N/10))/{RATE}/TB'", {"container.constant-rate": None},
            tags=(*TAGS, "-vsync", "passthrough")),
    # Geometry.
    picture("scale half", "gradient", "scale=192:108", {"geometry.scaled": Near(0.5)}),
    picture("crop", "gradient", "crop=352:184:16:16", {"geometry.cropped": Near(16)}),
    picture("pad", "gradient", "pad=416:248:16:16", {"geometry.padded": Near(16)}),
    picture("pad and crop", "gradient", "pad=388:216:4:0,crop=384:216:0:0", {"geometry.shifted": Near(4)}),
    picture("hflip", "gradient", "hflip", {"geometry.flipped": Text("horizontal")}),
    picture("vflip", "gradient", "vflip", {"geometry.flipped": Text("vertical")}),
    picture("transpose clock", "gradient", "transpose=clock", {"geometry.rotated": Near(90)}),
    picture("hflip and vflip", "gradient", "hflip,vflip", {"geometry.rotated": Near(180)}),
    # Fields.
    picture("il swaps fields", "fields", "il=luma_swap=1:chroma_swap=1", {"fields.swapped": None}),
    picture("phase", "fields", "phase=mode=t", {"fields.shifted": None}),
    picture("yadif", "fields", "yadif=mode=send_frame,setfield=prog", {"fields.progressive": None}),
    picture("yadif bob", "fields", "yadif=mode=send_field,setfield=prog", {"fields.bobbed": None}),
    picture("bwdif", "fields", "bwdif=mode=send_frame,setfield=prog", {"fields.progressive": None}),
    picture("bwdif bob", "fields", "bwdif=mode=send_field,setfield=prog", {"fields.bobbed": None}),
    # It moves the picture by a row, so that each field is on the other's.
    picture("fieldorder", "fields", "fieldorder=bff", {"fields.swapped": None}, tags=(*TAGS, "-field_order", "bb")),
    picture("field and scale", "fields", "field=top,scale=384:288:flags=neighbor,setsar=1,setfield=tff",
            {"fields.lost": None}),
    # pp works on 8 bits alone.
    picture("pp linear blend", "fields", "format=yuv422p,pp=lb,setfield=tff", {"fields.blended": None},
            options=("--accept", "container.depth")),
    # Sound.
    sound("pan swap", "stereo", "pan=stereo|c0=c1|c1=c0", {"audio.order": None}),
    sound("pan mono", "stereo", "pan=mono|c0=0.5*c0+0.5*c1", {"audio.downmix": None},
          inside={"audio.downmix": ["container.channels"]}),
    sound("channelmap 5.1", "surround", "channelmap=0|1|3|2|4|5:5.1(side)", {"audio.order": None}),
    sound("aeval polarity", "stereo", "aeval=val(0)|-val(1):c=same", {"audio.polarity": None}),
    sound("volume", "stereo", "volume=-6dB", {"audio.gain": Near(-6, 0.001)}),
    sound("volume 0 for 10 ms", "tone", "asetnsamples=480,volume=0:enable='between(t,3,3.005)'",
          {"audio.dropout": None}),
    sound("asetrate", "tone", "asetrate=50000,aresample=48000", {"audio.pitch": Near(50000 / 48000)}),
    sound("asetrate by 100 ppm", "tone", "asetrate=50000,aresample=49995,asetrate=48000", {"audio.drift": Near(100, 1)}),
    sound("atempo", "stereo", "atempo=1.01", {"sync.drift": Near(-10_000)}),
    sound("atempo on BLITS", "surround", "atempo=0.97", {"sync.drift": Near(30_000)}),
    sound("adelay", "stereo", "adelay=40:all=1", {"sync.offset": Near(40)}),
    sound("atrim", "stereo", "atrim=start=0.05,asetpts=PTS-STARTPTS", {"sync.offset": Near(-50)}),
    sound("aresample 44100", "stereo", "aresample=44100", {"container.sample-rate": Near(44100)}),
    sound("dcshift", "tone", "dcshift=0.01", {"audio.dc": Near(-40, 0.1)}),
    sound("aeval clip", "tone", "aeval=clip(val(0)\\,-0.06\\,0.06)|clip(val(1)\\,-0.06\\,0.06):c=same",
          {"audio.clipping": None}),
    sound("aeval depth", "tone", "aeval=floor(val(0)*128)/128|floor(val(1)*128)/128:c=same", {"audio.depth": Near(8)}),
    sound("channels to silence", "stereo", "pan=stereo|c1=c1", {"audio.silence": None}),
    # In a steady tone, ten whole periods would leave no trace.
    ffmpeg("atrim and concat", "stereo",
           ["-filter_complex", "[0:a]asplit[a][b];[a]atrim=end_sample=192000[x];[b]atrim=start_sample=192484[y];"
                               "[x][y]concat=v=0:a=1[s]", "-map", "0:v", "-map", "[s]", "-c:v", "copy"],
           {"audio.lost": Near(484)}),
    ffmpeg("anoisesrc and amix", "tone",
           ["-filter_complex", "anoisesrc=r=48000:a=0.01:seed=1,pan=stereo|c0=c0|c1=c0[n];"
                               "[0:a][n]amix=inputs=2:normalize=0:duration=first[s]",
            "-map", "0:v", "-map", "[s]", "-c:v", "copy"], {"audio.noise": None}),
    ffmpeg("ac 2 of 5.1", "surround", ["-ac", "2", "-c:v", "copy"], {"audio.downmix": None},
           inside={"audio.downmix": ["container.channels"]}),
]


def gstreamer(name, clip, elements, expect, **more):
    """Elements between decoding and encoding of the picture; the sound is left out."""
    line = (f"filesrc location={{in}} ! matroskademux name=d d.video_0 ! avdec_ffv1 ! {elements} ! avenc_ffv1 ! "
            "matroskamux ! filesink location={out}")
    return Foreign(name, PIPELINE, clip, ["-q", *line.split()], expect,
                   options=("--accept", "container.channels"), **more)


def gstreamer_sound(name, clip, elements, expect, **more):
    line = (f"filesrc location={{in}} ! matroskademux name=d d.audio_0 ! flacparse ! flacdec ! audioconvert ! "
            f"audio/x-raw,format=F32LE ! {elements} ! audioconvert dithering=none ! audio/x-raw,format=S24LE ! "
            "wavenc ! filesink location={out}")
    return Foreign(name, PIPELINE, clip, ["-q", *line.split()], expect, extension=".wav", **more)


GSTREAMER = [
    # The older property, method=horizontal-flip, leaves pictures as they are in GStreamer 1.22.0.
    gstreamer("videoflip", "rgb", "videoconvert ! video/x-raw,format=BGRx ! videoflip video-direction=horiz",
              {"geometry.flipped": Text("horizontal")}),
    gstreamer("videocrop", "rgb", "videocrop left=16 right=16 top=16 bottom=16 ! videoconvert",
              {"geometry.cropped": Near(16)}),
    gstreamer("videobox", "rgb", "videoconvert ! video/x-raw,format=BGRA ! videobox border-alpha=1 left=-16 right=-16 "
              "top=-16 bottom=-16 ! videoconvert ! video/x-raw,format=BGRx",
              # R'G'B' without a transfer function in its caps is sRGB to GStreamer.
              {"geometry.padded": Near(16), "container.transfer": Text("sRGB")}),
    gstreamer("videorate", "gradient", "videorate ! video/x-raw,framerate=30/1", {"order.cadence": Near(1.25, 0.01)}),
    gstreamer_sound("volume element", "tone", "volume volume=0.5", {"audio.gain": Near(-6.0206, 0.001)}),
    # With floats, degree=1 gives silence in GStreamer 1.22.0. 16 bits become -1 - code.
    gstreamer_sound("audioinvert", "stereo", "audioconvert ! audio/x-raw,format=S16LE ! audioinvert degree=1",
                    {"audio.polarity": None}, options=("--accept", "audio.depth", "--accept", "audio.dc")),
    gstreamer_sound("audioamplify", "tone", "audioamplify amplification=4.0 clipping-method=clip",
                    {"audio.gain": Near(12.0412, 0.001)}),
]

# melt works on 8-bit 4:2:2 and 16-bit sound, and takes small pictures for BT.601: these rows ask for one thing.
MELT = [
    Foreign("melt mirror", "melt",  "rgb",
            ["-silent", "{in}", "-filter", "mirror", "mirror=flip", "-consumer", "avformat:{out}",
             "vcodec=ffv1", "acodec=flac", "real_time=-1"], {"geometry.flipped": Text("horizontal")},
            options=("--only", "geometry.flipped")),
    Foreign("melt volume", "melt", "stereo",
            ["-silent", "{in}", "-filter", "volume", "level=-6", "-consumer", "avformat:{out}", "vcodec=ffv1",
             "acodec=pcm_s24le", "real_time=-1"], {"audio.gain": Near(-6, 0.01)}, options=("--only", "audio.gain")),
]

FOREIGN = [*FFMPEG, *GSTREAMER, *MELT]
assert len({row.name for row in FOREIGN}) == len(FOREIGN)
