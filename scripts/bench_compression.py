"""How fast each compression preset encodes a tape, beside the ffmpeg command line with the same filters and encoder."""

import json
import os
import subprocess

FIELDS = ["-vf", "bwdif=mode=send_field:parity=bff:deint=all"]
# In two steps as the program does it: fields become pictures before the range changes.
JPEG = ["-vf", "bwdif=mode=send_field:parity=bff:deint=all,scale=flags=lanczos+accurate_rnd:out_range=pc,format=yuv420p"]
PRORES = ["-vf", "scale=interl=1:flags=lanczos+accurate_rnd,format=yuv422p10le", "-flags", "+ildct+ilme"]
FFV1 = ["-c:v", "ffv1", "-level", "3", "-slices", "4", "-slicecrc", "1", "-g", "1", "-flags", "+ildct+ilme"]

# What each preset's row in the program says, as arguments of ffmpeg.
ENCODINGS = {
    "h264": [*FIELDS, "-c:v", "libx264", "-preset", "medium", "-crf", "20", "-g", "100", "-c:a", "aac"],
    "h265": [*FIELDS, "-c:v", "libx265", "-preset", "fast", "-crf", "22", "-g", "100", "-tag:v", "hvc1", "-c:a", "aac"],
    "prores": [*PRORES, "-c:v", "prores_ks", "-profile:v", "2", "-c:a", "pcm_s16le"],
    "ffv1": [*FFV1, "-c:a", "flac"],
    "ffv1-pcm": [*FFV1, "-c:a", "pcm_s16le"],
    "mjpeg": [*JPEG, "-c:v", "mjpeg", "-q:v", "3", "-color_range", "pc", "-c:a", "pcm_s16le"],
    "av1": [*FIELDS, "-c:v", "libsvtav1", "-preset", "10", "-crf", "30", "-g", "100", "-c:a", "aac"],
}


def presets(deckhand):
    listed = subprocess.run([str(deckhand), "presets", "--json"], check=True, capture_output=True, text=True)
    return json.loads(listed.stdout)["presets"]


def compare_presets(deckhand, tape, seconds, sampler, row):
    """A row for each preset of this machine: wall seconds of both, and how many times as fast as it plays."""
    for preset in presets(deckhand):
        name, identifier, container = preset["name"], preset["identifier"], preset["container"]
        arguments = ENCODINGS[identifier]

        def ours(scratch, identifier=identifier):
            return [deckhand, "capture", "--device", f"tape:{tape}", "--output", scratch / "clips",
                    "--compression", identifier, "--set", "detectScene=false"], None

        def theirs(scratch, arguments=arguments, container=container):
            return ["ffmpeg", "-v", "error", "-nostdin", "-i", tape, *arguments, scratch / f"out.{container}"], None

        own, other = sampler.compare(ours, theirs)
        row(f"{name}: {seconds / own:.1f}x real time, ffmpeg {seconds / other:.1f}x", own, other, "s",
            f"{own / other:.2f} (<= 1.1)", own <= 1.1 * other)


os.environ.setdefault("SVT_LOG", "1")  # which is all that this encoder is asked to say
