#pragma once
// Small interface files written for the tests: each exercises a group of the reading rules.

#include <QByteArray>
#include <QString>

// moc does not follow raw string literals; it needs nothing from here.
#ifndef Q_MOC_RUN
namespace Fixtures {

// A Cocoa xib with one object of most localizable kinds.
inline QByteArray cocoaXib()
{
    return QByteArray(R"(<?xml version="1.0" encoding="UTF-8"?>
<document type="com.apple.InterfaceBuilder3.Cocoa.XIB" version="3.0" toolsVersion="20037">
    <objects>
        <customObject id="-2" userLabel="File's Owner" customClass="Controller"/>
        <window title="Prefs &amp; More" customClass="NSPanel" id="1">
            <view key="contentView" id="2">
                <subviews>
                    <button toolTip="Press it" id="10">
                        <buttonCell key="cell" title="OK" alternateTitle="Done" id="11"/>
                        <accessibility description="Confirm" help="Saves"/>
                    </button>
                    <textField id="20">
                        <textFieldCell key="cell" title="Name:" placeholderString="Your name" id="21">
                            <font key="font" metaFont="system"/>
                        </textFieldCell>
                    </textField>
                    <textField id="30">
                        <textFieldCell key="cell" id="31">
                            <string key="title">Line one
Line two</string>
                        </textFieldCell>
                    </textField>
                    <popUpButton id="40">
                        <popUpButtonCell key="cell" title="Item" id="41">
                            <menu key="menu" title="OtherViews" id="42">
                                <items>
                                    <menuItem title="Item" state="on" id="43"/>
                                </items>
                            </menu>
                        </popUpButtonCell>
                    </popUpButton>
                    <segmentedControl id="50">
                        <segmentedCell key="cell" id="aB1-cD-eF2">
                            <segments>
                                <segment label="One"/>
                                <segment/>
                                <segment label="Three" toolTip="third"/>
                            </segments>
                        </segmentedCell>
                    </segmentedControl>
                    <tableView id="60">
                        <tableColumns>
                            <tableColumn headerToolTip="Col tip" id="61">
                                <tableHeaderCell key="headerCell" title="Column"/>
                                <textFieldCell key="dataCell" title="Text Cell" id="62"/>
                            </tableColumn>
                        </tableColumns>
                    </tableView>
                    <box title="Group" titlePosition="noTitle" id="70"/>
                    <textField id="80">
                        <textFieldCell key="cell" id="81">
                            <string key="title" base64-UTF8="YES">IA</string>
                        </textFieldCell>
                        <connections>
                            <binding destination="-2" name="value" keyPath="x" id="82">
                                <dictionary key="options">
                                    <string key="NSNullPlaceholder">None</string>
                                    <integer key="NSNoSelectionPlaceholder" value="-1"/>
                                </dictionary>
                            </binding>
                        </connections>
                    </textField>
                    <button id="90">
                        <buttonCell key="cell" title="Help" id="Zz9-aa-001">
                            <attributedString key="userComments">
                                <fragment content="Do not "/>
                                <fragment>
                                    <string key="content">translate</string>
                                </fragment>
                            </attributedString>
                        </buttonCell>
                    </button>
                </subviews>
            </view>
        </window>
        <menu title="Main" systemMenu="main" id="100">
            <items>
                <menuItem title="Quit &quot;App&quot; \now" keyEquivalent="q" id="101"/>
                <menuItem title="" id="102"/>
            </items>
        </menu>
        <toolbar id="110">
            <allowedToolbarItems>
                <toolbarItem label="Print" paletteLabel="Print Doc" toolTip="Prints" id="111"/>
            </allowedToolbarItems>
        </toolbar>
        <tabView id="120">
            <tabViewItems>
                <tabViewItem label="General" identifier="general" id="121"/>
            </tabViewItems>
        </tabView>
    </objects>
</document>
)");
}

// What ibtool writes for cocoaXib(), as text after the byte-order mark.
inline QString cocoaTable()
{
    return QString::fromUtf8(R"(
/* Class = "NSWindow"; title = "Prefs & More"; ObjectID = "1"; */
"1.title" = "Prefs & More";

/* Class = "NSButton"; ibExternalAccessibilityDescription = "Confirm"; ObjectID = "10"; */
"10.ibExternalAccessibilityDescription" = "Confirm";

/* Class = "NSButton"; ibExternalAccessibilityHelp = "Saves"; ObjectID = "10"; */
"10.ibExternalAccessibilityHelp" = "Saves";

/* Class = "NSButton"; ibShadowedToolTip = "Press it"; ObjectID = "10"; */
"10.ibShadowedToolTip" = "Press it";

/* Class = "NSButtonCell"; alternateTitle = "Done"; ObjectID = "11"; */
"11.alternateTitle" = "Done";

/* Class = "NSButtonCell"; title = "OK"; ObjectID = "11"; */
"11.title" = "OK";

/* Class = "NSTextFieldCell"; placeholderString = "Your name"; ObjectID = "21"; */
"21.placeholderString" = "Your name";

/* Class = "NSTextFieldCell"; title = "Name:"; ObjectID = "21"; */
"21.title" = "Name:";

/* Class = "NSTextFieldCell"; title = "Line one\nLine two"; ObjectID = "31"; */
"31.title" = "Line one\nLine two";

/* Class = "NSMenu"; title = "OtherViews"; ObjectID = "42"; */
"42.title" = "OtherViews";

/* Class = "NSMenuItem"; title = "Item"; ObjectID = "43"; */
"43.title" = "Item";

/* Class = "NSTableColumn"; headerCell.title = "Column"; ObjectID = "61"; */
"61.headerCell.title" = "Column";

/* Class = "NSTableColumn"; headerToolTip = "Col tip"; ObjectID = "61"; */
"61.headerToolTip" = "Col tip";

/* Class = "NSTextFieldCell"; title = "Text Cell"; ObjectID = "62"; */
"62.title" = "Text Cell";

/* Class = "NSBox"; title = "Group"; ObjectID = "70"; */
"70.title" = "Group";

/* Class = "NSTextFieldCell"; title = " "; ObjectID = "81"; */
"81.title" = " ";

/* Class = "CocoaBindingsConnection"; ibShadowedIsNilPlaceholder = "None"; ObjectID = "82"; */
"82.ibShadowedIsNilPlaceholder" = "None";

/* Class = "NSMenu"; title = "Main"; ObjectID = "100"; */
"100.title" = "Main";

/* Class = "NSMenuItem"; title = "Quit \"App\" \\now"; ObjectID = "101"; */
"101.title" = "Quit \"App\" \\now";

/* Class = "NSToolbarItem"; label = "Print"; ObjectID = "111"; */
"111.label" = "Print";

/* Class = "NSToolbarItem"; paletteLabel = "Print Doc"; ObjectID = "111"; */
"111.paletteLabel" = "Print Doc";

/* Class = "NSToolbarItem"; toolTip = "Prints"; ObjectID = "111"; */
"111.toolTip" = "Prints";

/* Class = "NSTabViewItem"; label = "General"; ObjectID = "121"; */
"121.label" = "General";

/* Class = "NSButtonCell"; title = "Help"; ObjectID = "Zz9-aa-001"; Note = "Do not translate"; */
"Zz9-aa-001.title" = "Help";

/* Class = "NSSegmentedCell"; aB1-cD-eF2.ibShadowedLabels[0] = "One"; ObjectID = "aB1-cD-eF2"; */
"aB1-cD-eF2.ibShadowedLabels[0]" = "One";

/* Class = "NSSegmentedCell"; aB1-cD-eF2.ibShadowedLabels[2] = "Three"; ObjectID = "aB1-cD-eF2"; */
"aB1-cD-eF2.ibShadowedLabels[2]" = "Three";

/* Class = "NSSegmentedCell"; aB1-cD-eF2.ibShadowedToolTips[2] = "third"; ObjectID = "aB1-cD-eF2"; */
"aB1-cD-eF2.ibShadowedToolTips[2]" = "third";
)");
}

// An iOS storyboard scene.
inline QByteArray touchStoryboard()
{
    return QByteArray(R"(<?xml version="1.0" encoding="UTF-8"?>
<document type="com.apple.InterfaceBuilder3.CocoaTouch.Storyboard.XIB" version="3.0" toolsVersion="21701">
    <scenes>
        <scene sceneID="s1">
            <objects>
                <tableViewController title="Settings" id="tv1-aa-bbb">
                    <tableView key="view" id="tv2-aa-bbb">
                        <sections>
                            <tableViewSection headerTitle="Privacy" footerTitle="Kept on device" id="sec-aa-bbb">
                                <cells>
                                    <tableViewCell id="cel-aa-bbb">
                                        <tableViewCellContentView key="contentView" id="ccv-aa-bbb">
                                            <subviews>
                                                <label text="Clear data" id="lbl-aa-bbb"/>
                                                <button id="btn-aa-bbb">
                                                    <state key="normal" title="Clear"/>
                                                    <state key="highlighted" image="x"/>
                                                    <accessibility key="accessibilityConfiguration" label="Clear all" hint="Removes everything"/>
                                                </button>
                                                <textField placeholder="Search" id="txt-aa-bbb"/>
                                            </subviews>
                                        </tableViewCellContentView>
                                    </tableViewCell>
                                </cells>
                            </tableViewSection>
                        </sections>
                    </tableView>
                    <navigationItem key="navigationItem" title="Settings" id="nav-aa-bbb">
                        <barButtonItem key="rightBarButtonItem" title="Done" id="bbi-aa-bbb"/>
                    </navigationItem>
                </tableViewController>
            </objects>
        </scene>
    </scenes>
</document>
)");
}

// An Interface Builder 3 archive: object records, a base64 string with Xcode's stray character,
// an NSMutableString title, a box's title cell, a string shared through a reference.
inline QByteArray legacyArchive()
{
    return QByteArray(R"(<?xml version="1.0" encoding="UTF-8"?>
<archive type="com.apple.InterfaceBuilder3.Cocoa.XIB" version="8.00">
	<data>
		<array class="NSMutableArray" key="IBDocument.RootObjects" id="1000">
			<object class="NSWindowTemplate" id="2000">
				<string key="NSWindowTitle">Preferences</string>
				<object class="NSMutableString" key="NSWindowClass">
					<characters key="NS.bytes">NSWindow</characters>
				</object>
				<object class="NSView" key="NSWindowView" id="2001">
					<array class="NSMutableArray" key="NSSubviews">
						<object class="NSButton" id="3000">
							<object class="NSButtonCell" key="NSCell" id="3001">
								<string type="base64-UTF8" key="NSContents">TWFyayBhbGwgcmVhZDoKA</string>
								<string key="NSAlternateContents"/>
							</object>
						</object>
						<object class="NSBox" id="4000">
							<object class="NSTextFieldCell" key="NSTitleCell" id="4001">
								<string key="NSContents" id="5000">Shared</string>
							</object>
						</object>
						<object class="NSTextField" id="6000">
							<object class="NSTextFieldCell" key="NSCell" id="6001">
								<reference key="NSContents" ref="5000"/>
							</object>
						</object>
					</array>
				</object>
			</object>
			<object class="NSMenu" id="7000">
				<object class="NSMutableString" key="NSTitle">
					<characters key="NS.bytes">OtherViews</characters>
				</object>
			</object>
		</array>
		<object class="IBObjectContainer" key="IBDocument.Objects">
			<object class="IBMutableOrderedSet" key="objectRecords">
				<array key="orderedObjects">
					<object class="IBObjectRecord">
						<int key="objectID">0</int>
						<array key="object" id="0"/>
						<reference key="children" ref="1000"/>
						<nil key="parent"/>
					</object>
					<object class="IBObjectRecord">
						<int key="objectID">5</int>
						<reference key="object" ref="2000"/>
					</object>
					<object class="IBObjectRecord">
						<int key="objectID">12</int>
						<reference key="object" ref="3001"/>
					</object>
					<object class="IBObjectRecord">
						<int key="objectID">20</int>
						<reference key="object" ref="4000"/>
					</object>
					<object class="IBObjectRecord">
						<int key="objectID">31</int>
						<reference key="object" ref="6001"/>
					</object>
					<object class="IBObjectRecord">
						<int key="objectID">40</int>
						<reference key="object" ref="7000"/>
					</object>
				</array>
			</object>
		</object>
	</data>
</archive>
)");
}

}  // namespace Fixtures
#endif
