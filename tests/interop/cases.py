"""The movies that are written anew: one for each codec, made with ffmpeg or byte by byte."""
import random
import subprocess

PICTURE = ["-f", "lavfi", "-i", "testsrc2=size=176x144:rate=25:duration=2"]
LARGE = ["-f", "lavfi", "-i", "testsrc2=size=1280x720:rate=25:duration=0.4"]
SOUND = ["-f", "lavfi", "-i", "sine=frequency=440:sample_rate=48000:duration=2"]

HOME = ["mov", "mp4", "m4v"]
MOBILE = ["mov", "mp4", "3gp", "3g2"]
EVERY = ["mov", "mp4", "m4v", "3gp", "3g2", "amc", "psp"]
GENERAL = ["mov", "mp4"]
# What RTP has a payload for, and the flavours that may hold hint tracks.
STREAMED = ("H.264", "H.265", "MPEG-4 visual", "AAC", "AMR", "PCM s16be")
HINTED = ["mov", "mp4", "m4v", "3gp", "3g2"]


class Case:
    """kind: "video" or "sound"; source: extension of the file that ffmpeg makes; flavours: where it may go."""

    def __init__(self, name, kind, source, flavours, arguments, inputs=None, make=None, plain=False):
        self.name, self.kind, self.source, self.flavours = name, kind, source, flavours
        self.arguments, self.inputs, self.make, self.plain = arguments, inputs, make, plain
        self.hinted = HINTED if name.startswith(STREAMED) else []

    def create(self, path):
        if self.make:
            self.make(path)
            return
        inputs = self.inputs or (PICTURE if self.kind == "video" else SOUND)
        run_ffmpeg(inputs + self.arguments + [path])


def run_ffmpeg(arguments):
    subprocess.run(["ffmpeg", "-v", "error", "-y", "-fflags", "+bitexact", *map(str, arguments)], check=True, timeout=300)


def make_amr(path, magic, header, size, rate):
    """Frames of noise in the highest mode: what they sound like does not matter, only that all decode alike."""
    noise = random.Random(rate)
    raw = path + ".amr"
    with open(raw, "wb") as file:
        file.write(magic)
        for _ in range(100):
            file.write(bytes([header]) + noise.randbytes(size))
    run_ffmpeg(["-i", raw, "-c", "copy", path])


def narrow_amr(path):
    make_amr(path, b"#!AMR\n", 7 << 3 | 4, 31, 8000)


def wide_amr(path):
    make_amr(path, b"#!AMR-WB\n", 8 << 3 | 4, 60, 16000)


def video(name, source, flavours, *arguments, inputs=None):
    return Case(name, "video", source, flavours, list(arguments), inputs)


def sound(name, source, flavours, *arguments, inputs=None, plain=False):
    return Case(name, "sound", source, flavours, list(arguments), inputs, plain=plain)


def pcm(codec, *arguments, flavours=None):
    return sound(f"PCM {codec[4:]}", "mov", flavours or GENERAL, "-c:a", codec, *arguments, plain=True)


CASES = [
    video("H.264, B-frames", "mp4", EVERY, "-c:v", "libx264", "-bf", "2", "-g", "12"),
    video("H.264, edit list", "mov", ["mov", "mp4", "m4v", "3gp"], "-c:v", "libx264", "-bf", "3", "-output_ts_offset", "0.4"),
    video("H.264, 10 bit 4:2:2", "mov", GENERAL, "-c:v", "libx264", "-pix_fmt", "yuv422p10le"),
    video("H.264, negative offsets", "mp4", HOME, "-c:v", "libx264", "-bf", "2", "-movflags", "+negative_cts_offsets"),
    video("H.264, wide pixels, BT.709", "mov", HOME, "-c:v", "libx264", "-aspect", "16:9", "-colorspace", "bt709",
          "-color_primaries", "bt709", "-color_trc", "bt709", "-movflags", "+write_colr"),
    video("H.265 hvc1", "mp4", ["mov", "mp4", "m4v", "3gp", "3g2", "psp"], "-c:v", "libx265", "-x265-params",
          "log-level=error", "-tag:v", "hvc1"),
    video("H.265 hev1", "mov", ["mov", "mp4", "m4v"], "-c:v", "libx265", "-x265-params", "log-level=error", "-tag:v",
          "hev1"),
    video("MPEG-4 visual", "mp4", EVERY, "-c:v", "mpeg4", "-bf", "2", "-g", "12"),
    video("MPEG-4 visual in MOV", "mov", ["mov", "mp4", "3gp"], "-c:v", "mpeg4"),
    video("H.263", "3gp", ["mov", "mp4", "3gp", "3g2", "amc"], "-c:v", "h263"),
    video("H.263 in MOV", "mov", ["mov", "mp4", "3gp", "3g2"], "-c:v", "h263"),
    video("ProRes 422", "mov", GENERAL, "-c:v", "prores_ks", "-profile:v", "2"),
    video("ProRes 4444", "mov", GENERAL, "-c:v", "prores_ks", "-profile:v", "4", "-pix_fmt", "yuva444p10le"),
    video("DNxHD", "mov", GENERAL, "-c:v", "dnxhd", "-b:v", "60M", "-pix_fmt", "yuv422p", inputs=LARGE),
    video("DNxHR", "mov", GENERAL, "-c:v", "dnxhd", "-profile:v", "dnxhr_sq", "-pix_fmt", "yuv422p", inputs=LARGE),
    video("Motion JPEG", "mov", GENERAL, "-c:v", "mjpeg", "-pix_fmt", "yuvj420p"),
    video("PNG", "mov", GENERAL, "-c:v", "png"),
    video("Animation", "mov", ["mov"], "-c:v", "qtrle"),
    video("Uncompressed 4:2:2", "mov", ["mov"], "-c:v", "rawvideo", "-pix_fmt", "uyvy422"),
    sound("AAC", "m4a", ["mov", "mp4", "m4a", "m4v", "3gp", "3g2", "amc", "psp"], "-c:a", "aac"),
    sound("AAC in MOV", "mov", ["mov", "mp4", "m4a", "3gp"], "-c:a", "aac", "-ac", "2"),
    sound("AAC, 5.1", "mp4", ["mov", "mp4", "m4a"], "-c:a", "aac", "-ac", "6"),
    sound("ALAC", "m4a", ["mov", "mp4", "m4a"], "-c:a", "alac"),
    sound("ALAC in MOV", "mov", ["mov", "mp4", "m4a"], "-c:a", "alac", "-ac", "2"),
    sound("MP3", "mp4", ["mov", "mp4", "m4a"], "-c:a", "libmp3lame"),
    sound("MP3 in MOV", "mov", ["mov", "mp4", "m4a"], "-c:a", "libmp3lame"),
    sound("AC-3", "mov", ["mov", "mp4", "m4v"], "-c:a", "ac3"),
    sound("Opus", "mp4", ["mov", "mp4"], "-c:a", "libopus"),
    sound("FLAC", "mp4", ["mov", "mp4"], "-c:a", "flac", "-strict", "-2"),
    Case("AMR narrow band", "sound", "3gp", ["mov", "3gp", "3g2"], [], make=narrow_amr),
    Case("AMR wide band", "sound", "3gp", ["mov", "3gp", "3g2"], [], make=wide_amr),
    pcm("pcm_u8"), pcm("pcm_s8"), pcm("pcm_s16be"), pcm("pcm_s16le"), pcm("pcm_s16le", "-ac", "2", "-ar", "96000"),
    pcm("pcm_s24be"), pcm("pcm_s24le"), pcm("pcm_s24le", "-ar", "96000"), pcm("pcm_s32be"), pcm("pcm_s32le"),
    pcm("pcm_f32be"), pcm("pcm_f32le"), pcm("pcm_f64be"), pcm("pcm_f64le"),
    sound("mu-law", "mov", ["mov"], "-c:a", "pcm_mulaw", "-ar", "8000", plain=True),
    sound("A-law", "mov", ["mov"], "-c:a", "pcm_alaw", "-ar", "8000", plain=True),
    sound("IMA ADPCM", "mov", ["mov"], "-c:a", "adpcm_ima_qt", plain=True),
    Case("H.264 and AAC", "both", "mp4", EVERY, ["-c:v", "libx264", "-c:a", "aac", "-shortest"], inputs=PICTURE + SOUND),
    Case("H.264, PCM, timecode", "both", "mov", ["mov", "mp4"],
         ["-c:v", "libx264", "-c:a", "pcm_s16le", "-timecode", "10:00:00:00", "-metadata", "title=A title"],
         inputs=PICTURE + SOUND),
]
