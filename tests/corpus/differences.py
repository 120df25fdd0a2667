"""Where the library's own rules make a difference, and where a file is damaged: what differs, and why.

A difference that is not listed fails the test, and so does one that is listed and no longer there.
"""

# (file, track): (the kinds of difference, the reason in one sentence)
TRACKS = {
    ("3g2_kddi_fragmented_uuid.3g2", 1): (
        {"packets"}, "Movie fragments are not read, so only the samples of the movie header's own tables count."),
    ("bad_chunk_out_of_range.mp4", 1): (
        {"samples", "extract"},
        "The only sample-to-chunk entry begins at chunk 16777217, so no chunk that exists holds samples."),
    ("bad_infinite_loop_size.m4a", 1): (
        {"samples", "extract code"}, "The size table is damaged: sizes from sample 429 on are up to 4 GiB, more than "
                                     "the file could hold, and reading stops there; what comes before is beyond "
                                     "the end of the file."),
    ("m4a_enhanced_podcast_load_tx3g.m4a", 4): (
        {"packets"}, "The other reader counts the one picture twice, as a sample and as cover art."),
    ("mp4_fragmented.mp4", 1): (
        {"packets"}, "Movie fragments are not read, and the tables of the movie header are empty."),
    ("mp4_fragmented.mp4", 2): (
        {"packets"}, "Movie fragments are not read, and the tables of the movie header are empty."),
    ("mp4_opus.mp4", 1): (
        {"samples", "extract", "packets"},
        "Sound of a format without a rule of its own and with one size for all samples is taken for uncompressed "
        "sound: a sample is channels x bits / 8 bytes."),
    ("mp4_stz2.mp4", 1): (
        {"info", "samples", "extract", "packets"}, "Compact sample sizes (stz2) are not read, so there are no sizes."),
    ("qt_mace3_audio.mov", 1): (
        {"packets", "extract code"},
        "Sound of a format without a rule of its own is taken for uncompressed sound, so that three times as many "
        "bytes are read, beyond the end of the file."),
    ("qt_phone_metadata_tracks.mov", 2): (
        {"samples", "extract", "packets"},
        "Reading ends with the presentation: the edit list is 0.467 s long, the last two samples begin later."),
    ("qt_sowt_pcm.mp4", 1): (
        {"samples", "extract", "packets"},
        "A sample of uncompressed sound is always channels x bits / 8 bytes, here 4; the table has one sample of "
        "17640 bytes a chunk."),
    ("qt_ulaw_audio.mov", 1): (
        {"packets", "extract code"},
        "The description says 16 bits, the size after decoding, and the rule for sound without sizes of its own "
        "goes by it; the file stores 8 bits."),
    ("mp4_xavc_uuid_rtmd_header_only.mp4", 1): (
        {"extract code"}, "The file is a header alone; its media data was left behind."),
    ("mp4_xavc_uuid_rtmd_header_only.mp4", 2): (
        {"extract code"}, "The file is a header alone; its media data was left behind."),
}

# file: (tracks that are missing, tracks that are there instead, the reason)
MISSING_TRACKS = {
    "mp4_v1_headers_flac_fragmented.mp4": (
        {1}, {0}, "A version-1 track header is read with the offsets of version 0, so the ID is taken from another field."),
}

# file: the reason that `info` refuses it with code 4
REFUSED = {
    "bad_64bit_size_overflow.mov": "A 64-bit size beyond the file hides everything behind it.",
    "bad_keys_count.mp4": "There is no movie header.",
    "mp4_stpp_subtitles.mp4": "Its only track has a subtitle media header (sthd), which makes no track.",
}

# file: the reason that the chapters are others
CHAPTERS = {
    "m4a_enhanced_podcast_load_tx3g.m4a":
        "A chapter reference holds one track ID here; the file names several, and the other reader takes the last.",
}
