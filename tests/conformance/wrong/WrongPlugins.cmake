# The wrong plug-ins, and which checks each of them fails.

# Files.
wrong_plugin(NotALibrary FILE "${CMAKE_CURRENT_LIST_FILE}" FAILS library.loads)
wrong_file(LacksAPropertyList .ksres.PIPL.16000
           FAILS registration.property-list registration.identity tessel.registration.property-list)
wrong_file(LacksItsKind .ksres.IMPT.1000 FAILS tessel.registration.small-resources)
wrong_file(LacksItsLayouts .ksres.LUMEN.ImporterTesselPrefs FAILS tessel.registration.layouts)
# A row of the shim, whose file has no layouts.
wrong_plugin(MisnamesItsIdentity FAILS registration.identity tessel.registration.identity
             ONLY registration tessel.registration.identity tessel.registration.property-list
                  tessel.registration.small-resources)

# Start-up and file types.
wrong_plugin(WritesBetweenItsFlags FAILS start-up.record tessel.start-up.open)
wrong_plugin(ShutsDownUnderProtest FAILS start-up.again)
wrong_plugin(OpensItsGateAlways
             FAILS tessel.start-up.absent tessel.start-up.other-texts tessel.start-up.other-types)
wrong_plugin(StartsWithoutARecord FAILS tessel.start-up.no-record)
wrong_plugin(WritesIntoReservedBytes FAILS file-type.described tessel.file-type.described)
wrong_plugin(RepeatsItsFileType FAILS file-type.end)

# Requests of every number.
wrong_plugin(ServesSelector87 FAILS requests.out-of-range)
wrong_plugin(EndsTheProcess FAILS requests.out-of-range)
wrong_plugin(WritesForSelector5
             FAILS requests.without-record tessel.selectors.declined tessel.selectors.noted)
wrong_plugin(NotesAnotherPointer FAILS tessel.selectors.noted)
wrong_plugin(ServesSelector4 FAILS tessel.selectors.declined tessel.selectors.noted)
wrong_plugin(IgnoresThePointerOf46 FAILS tessel.selectors.pointer-tests)
wrong_plugin(ServesSelector28 FAILS tessel.selectors.fixed tessel.selectors.noted)
wrong_plugin(HangsOnSelector27 TIME_LIMIT 2 FAILS tessel.selectors.27
             ONLY tessel.selectors.27 tessel.selectors.fixed)
wrong_plugin(DereferencesNullRecords FAILS requests.null-records tessel.selectors.null-records)
wrong_plugin(TakesFailureForUnsupported
             FAILS requests.null-records requests.null-instances frame.no-suites frame.refused
                   frame.failing-query)
wrong_plugin(DereferencesNullInstances FAILS requests.null-instances tessel.selectors.null-instances)
wrong_plugin(DeletesNothingGladly
             FAILS requests.null-records requests.null-instances tessel.selectors.null-records)
wrong_plugin(ReadsBehindItsRecord FAILS requests.record-ends)
wrong_plugin(SwapsWidthAndHeight
             FAILS requests.frame-size tessel.instance.frame-size tessel.instance.opened-again
                   tessel.instance.malformed)

# Instances.
wrong_plugin(DeletesUnderProtest FAILS open.document open.many open.damaged)
wrong_plugin(KeepsDeletedClips FAILS allocation.left)
wrong_plugin(TakesUnreadableForFailed
             FAILS open.unreadable open.unreadable-held tessel.describe.nothing tessel.settings.unreadable)
wrong_plugin(ForgetsHeldClips FAILS open.unreadable-held)
wrong_plugin(RefusesASecondOpen FAILS open.unreadable-held open.again tessel.instance.opened-again)
wrong_plugin(OpensOnce FAILS open.unreadable-held tessel.instance.opened-again)
wrong_plugin(ClosesUnderProtest FAILS open.closed-file)
wrong_plugin(OpensTwentyAtMost FAILS open.many)
wrong_plugin(CrashesOnCutDocuments FAILS open.damaged)
wrong_plugin(KeepsInstancesOfCutDocuments FAILS open.damaged)
wrong_plugin(RefusesMalformedFiles FAILS tessel.instance.malformed)
wrong_plugin(MakesAnInstanceEachTime FAILS tessel.instance.81)

# Descriptions.
wrong_plugin(DescribesNoTimeScale FAILS describe.fields)
wrong_plugin(DescribesAWidthThatGrows FAILS describe.same)
wrong_plugin(DescribesNothing FAILS describe.nothing tessel.describe.nothing)
wrong_plugin(MiscountsDurations
             FAILS tessel.describe.text tessel.describe.3003 tessel.describe.extreme-rates)
wrong_plugin(CountsAFrameAtLeast FAILS tessel.describe.extreme-rates)
wrong_plugin(HidesFailedDescriptions FAILS tessel.describe.no-suite tessel.describe.no-parameters)
wrong_plugin(ReadsUnopenedFiles FAILS tessel.describe.existing-unopened)
wrong_plugin(ForgetsOpenedFiles FAILS tessel.describe.opened)
wrong_plugin(KeepsSettingsOfMissingFiles FAILS tessel.describe.missing-file)

# Colours.
wrong_plugin(GivesAnUnknownRange FAILS color.codes tessel.color.rec709)
wrong_plugin(HasASecondColorSpace FAILS color.end tessel.color.rec709)
wrong_plugin(TakesUnspecifiedForRec709 FAILS tessel.color.unspecified)

# Settings texts and the dialog.
wrong_plugin(AsksForNoBuffer FAILS settings.size settings.text tessel.settings.size)
wrong_plugin(LeavesItsTextOpen FAILS settings.text)
wrong_plugin(BeginsTextsWithASpace FAILS tessel.settings.existing tessel.settings.10239)
wrong_plugin(CountsItsVersionUp FAILS tessel.settings.existing tessel.settings.stable)
wrong_plugin(WritesItsSizeAlways
             FAILS tessel.settings.unreadable tessel.settings.10239 tessel.settings.use-file
                   tessel.settings.no-block)
wrong_plugin(DropsTextsOf10000Bytes FAILS tessel.settings.10238)
wrong_plugin(TakesCancelForConsent FAILS tessel.settings.cancelled)
wrong_plugin(DiscardsEdits FAILS tessel.settings.accepted)
wrong_plugin(ForgetsThePathsNul FAILS tessel.settings.use-file)

# Documents.
wrong_plugin(DefaultsToAnotherWidth FAILS tessel.document.default)
wrong_plugin(SuppliesMissingWidths FAILS tessel.document.required)
wrong_plugin(TakesWholeNumbersForIntegers FAILS tessel.document.integers tessel.document.booleans)
wrong_plugin(WritesAVersionAlways FAILS tessel.document.version tessel.document.legacy-color)
wrong_plugin(KeepsARateOfZero FAILS tessel.document.zero-rate)
wrong_plugin(IgnoresWrappers FAILS tessel.document.wrapped tessel.document.legacy-color)
wrong_plugin(IgnoresLegacyColors FAILS tessel.document.legacy-color)
wrong_plugin(IgnoresColorSpaces FAILS tessel.document.color-space)
wrong_plugin(ReadsOverNuls FAILS tessel.document.nul)
wrong_plugin(ReadsOneObjectAndNoFurther FAILS tessel.document.trailing)
wrong_plugin(RoundsPositions FAILS tessel.document.swatches)
wrong_plugin(CrashesOnDeepNesting FAILS tessel.document.hostile)

# Frames.
wrong_plugin(MakesFramesTwiceAsHigh FAILS frame.as-described)
wrong_plugin(PaintsBehindTheRow FAILS frame.rows)
wrong_plugin(MixesWithOldPixels FAILS frame.old-pixels)
wrong_plugin(PaintsTheInstance FAILS frame.pure)
wrong_plugin(PaintsTheTime FAILS frame.steady)
wrong_plugin(CrashesBeforeTheStart FAILS frame.any-time)
wrong_plugin(HidesFailedFrames
             FAILS frame.no-suites frame.refused frame.failing-query tessel.frame.failing-suite
                   tessel.frame.refused tessel.frame.no-suites tessel.swatches.rules)
# It looks into the frame itself, so it also asks the host for one suite more than it should.
wrong_plugin(PaintsOneCodeValueOff
             FAILS tessel.frame.creation tessel.frame.progressive tessel.frame.fields tessel.frame.odd-height
                   tessel.frame.gradient-rows tessel.frame.gradient-time tessel.frame.gradient-signs
                   tessel.frame.field-type)
wrong_plugin(PaintsFieldsAsOne FAILS tessel.frame.fields tessel.frame.odd-height)
wrong_plugin(TakesDurationsForPositive FAILS tessel.frame.gradient-signs)
wrong_plugin(ReadsAByteOfFieldTypes FAILS tessel.frame.field-type)
wrong_plugin(RefusesClipsWithoutFrames FAILS tessel.frame.no-frames)
wrong_plugin(PaintsUnknownFormats FAILS tessel.frame.unknown-render tessel.frame.number)
wrong_plugin(DrawsNoNumberUnasked FAILS tessel.frame.number)
wrong_plugin(AsksEachHostAnew FAILS tessel.frame.creation tessel.frame.first-host)
wrong_plugin(MakesEveryFrameBGRA FAILS tessel.frame.normalised)
wrong_plugin(MovesAColumn FAILS tessel.swatches.places)
wrong_plugin(DrawsNoNumberWhenAsked FAILS tessel.swatches.other-format)
wrong_plugin(CrashesOnNegativePositions FAILS tessel.swatches.hostile)

# Sound.
wrong_plugin(LeavesItsLastSample FAILS audio.buffers audio.cuts)
wrong_plugin(SoundsLikeItsInstance FAILS audio.pure)
wrong_plugin(StartsEachRequestAtZero FAILS audio.cuts)
wrong_plugin(CrashesBeforeTheFirstSample FAILS audio.any-position)
wrong_plugin(WritesASampleAlways FAILS audio.no-samples tessel.audio.no-samples)
wrong_plugin(ServesNullBuffers FAILS audio.null-buffers tessel.audio.null-buffers)
wrong_plugin(SoundsOneDecibelQuieter
             FAILS tessel.audio.tone tessel.audio.stereo tessel.audio.blits tessel.audio.whole-ticks
                   tessel.audio.borders)
wrong_plugin(SwapsLeftAndRight
             FAILS tessel.audio.tone-channels tessel.audio.stereo tessel.audio.multichannel tessel.audio.blits
                   tessel.audio.borders)
wrong_plugin(IdentifiesForToneFormat2 FAILS tessel.audio.tone-formats)
wrong_plugin(IdentifiesForFormat7 FAILS tessel.audio.unknown-identifier)
wrong_plugin(CrashesOnARateOfZero FAILS tessel.audio.any-rate)
wrong_plugin(RoundsRates FAILS tessel.audio.whole-ticks)
wrong_plugin(RoundsRatesToKilohertz FAILS tessel.audio.borders)

# Threads.
wrong_plugin(SpoilsConcurrentFrames FAILS threads.frames)
wrong_plugin(SpoilsConcurrentSound FAILS threads.sound)
wrong_plugin(RefusesConcurrentOpens FAILS threads.instances)

# Memory and exceptions.
wrong_plugin(TakesShortMemoryForAnyFailure
             FAILS allocation.create allocation.open allocation.describe allocation.settings
                   tessel.settings.no-block tessel.barrier.results)
wrong_plugin(HidesShortMemoryInFrames FAILS allocation.frame)
wrong_plugin(HidesShortMemoryInSound FAILS allocation.sound)
wrong_plugin(HidesShortMemoryInColors FAILS allocation.color)
wrong_plugin(TakesFailureForShortMemory FAILS tessel.barrier.results)
