"""Faults of fields, put in by `tessel damage` and by FFmpeg's filters, named."""

from verify_support import VerifyTest, fields, gradient, main

SIZE = (360, 288)
UPPER_FIRST, LOWER_FIRST = 1, 2
SQUARE = ",setsar=1"


def still_fields(order=UPPER_FIRST):
    """Two fields of two colours."""
    return fields(size=SIZE, order=order, frames=12)


def moving(order=UPPER_FIRST):
    """Both fields are of one moment; rows differ at the edges of the number."""
    return gradient("uyv7", SIZE, order=order, frames=12)


CLIPS = {"fields of two colours": still_fields, "a moving gradient": moving}


class Fields(VerifyTest):
    def damaged(self, root, fault, output="damaged.mkv"):
        done = self.run_tessel("damage", self.save(root), "--fault", fault, "-o", self.path(output))
        self.assertEqual((done.returncode, done.stderr), (0, b""), fault)
        return self.path(output)

    def test_faults_of_damage_in_both_kinds_of_clips_and_both_orders(self):
        for kind, clip in CLIPS.items():
            for order in (UPPER_FIRST, LOWER_FIRST):
                for fault in ("swapped", "shifted", "blended", "bobbed", "lost", "progressive"):
                    with self.subTest(clip=kind, order=order, fault=fault):
                        root = clip(order)
                        self.expect(self.verify(root, self.damaged(root, f"fields.{fault}")), f"fields.{fault}")

    def test_the_field_that_is_left_and_the_field_that_is_late_are_told(self):
        root = still_fields()
        for value, left in (("lower", "upper"), ("upper", "lower")):
            finding = self.expect(self.verify(root, self.damaged(root, f"fields.lost={value}")), "fields.lost")
            self.assertEqual(finding["found"], f"{left} field")
        # The first field comes from the next frame: the upper one of an upper-first clip.
        finding = self.expect(self.verify(root, self.damaged(root, "fields.shifted")), "fields.shifted")
        self.assertIn("the upper field of each picture is of a later frame", finding["message"])

    def test_faults_survive_lossy_codecs(self):
        root = moving()
        for fault in ("fields.swapped", "fields.shifted", "fields.lost"):
            for output in ("damaged.mp4", "damaged.mxf"):
                with self.subTest(fault=fault, output=output):
                    self.expect(self.verify(root, self.damaged(root, fault, output)), fault)

    def test_a_progressive_clip_made_interlaced(self):
        root = gradient("uyv7", SIZE, frames=12)
        finding = self.expect(self.verify(root, self.damaged(root, "fields.interlaced")), "fields.interlaced")
        self.assertIn("container.fields", [inner["id"] for inner in finding["consequences"]])

    def filters(self, root, cases):
        for video_filter, check in cases:
            with self.subTest(video_filter):
                report = self.verify(root, self.filtered(root, video_filter), "--accept", "container.start")
                self.expect(report, check)

    def test_filters_on_fields_of_two_colours(self):
        self.filters(still_fields(), [
            ("setfield=bff", "container.fields"),
            ("fieldorder=bff", "fields.swapped"),
            ("il=ls=1:cs=1", "fields.swapped"),
            ("separatefields,weave=bottom", "fields.swapped"),
            ("phase=t", "fields.shifted"),
            ("pp=lb", "fields.blended"),
            ("yadif", "fields.progressive"),
            ("field=top,scale=360:288:flags=neighbor" + SQUARE, "fields.progressive"),
            ("separatefields,scale=360:288:flags=bilinear" + SQUARE, "fields.bobbed"),
        ])

    def test_filters_on_a_moving_gradient(self):
        self.filters(moving(), [
            ("phase=b", "fields.shifted"),
            ("bwdif=send_frame", "fields.progressive"),
            ("separatefields,scale=360:288:flags=neighbor" + SQUARE, "fields.bobbed"),
        ])

    def test_filters_on_progressive_pictures(self):
        self.filters(gradient("uyv7", SIZE, frames=24), [
            ("tinterlace=interleave_top", "fields.interlaced"),
            ("interlace", "fields.interlaced"),
        ])

    def test_what_a_clip_can_show(self):
        for root, shown in ((still_fields(), True), (moving(), True), (gradient(frames=6), False)):
            done = self.run_tessel("verify", "--visible", self.save(root))
            text = done.stdout.decode()
            for check in ("swapped", "shifted", "blended", "bobbed", "lost", "progressive"):
                self.assertEqual(f"shows      fields.{check}\n" in text, shown, text)
            self.assertEqual("shows      fields.interlaced\n" in text, not shown, text)


main()
