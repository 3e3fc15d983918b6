// Tests of the track file object.
