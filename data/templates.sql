-- The starting templates. Each template is a folder under templates/ with one
-- file per section; an empty file is an empty section. The closing line end of
-- each file is dropped, since the page writer ends every section with its own.
-- Lines inside a section end in CR LF, as every line the page writer adds does,
-- so that a page has one kind of line end whatever the files were saved with.
create temp table starting_template (
  tname       text not null,
  folder      text not null,
  description text not null
);

insert into starting_template (tname, folder, description) values
('Thumbnail Gallery', 'gallery',
 'Web Pages tab, one page: thumbnails three across, each linked to its picture, with the titles under them. Uses the background colour, text colour and background image chosen there.'),
('Picture List', 'list',
 'Web Pages tab, one page: one entry per file with the picture, title, description, file name, file size and height x width. Set Max Image Size to keep the pictures light. Uses the chosen colours and background image.'),
('Slide Show', 'slide_show',
 'Web Pages tab with Make slide show checked: one picture per page with its title and description, and First, Previous, Next and Last links. Uses the chosen colours and background image.'),
('Slide Show Dark', 'slide_show_dark',
 'Web Pages tab with Make slide show checked: one picture per page on a dark background with its title and description, and First, Previous, Next and Last buttons on every page.'),
('Index No Frames', 'index_page',
 'Index tab, Index template for No Frames: one page with the numbered links (thumbnails or file names) as a grid of cards.'),
('Index Frameset Top/Left/Right', 'index_frames_top_left_right',
 'Index tab, Index template for Top/Left/Right: the frameset with a title bar on top, the list on the left and the pictures on the right. Use with Index Top Frame, Index Left Frame and Index Right Frame.'),
('Index Frameset Left/Right', 'index_frames_left_right',
 'Index tab, Index template for Left/Right: the frameset with the list on the left and the pictures on the right. Use with Index Left Frame and Index Right Frame.'),
('Index Top Frame', 'index_top',
 'Index tab, Top Frame template for Top/Left/Right: the title bar across the top.'),
('Index Left Frame', 'index_left',
 'Index tab, Left Frame/TOC template for Top/Left/Right and Left/Right: the numbered list of links, with a Start page link that brings back the right frame page.'),
('Index Right Frame', 'index_right',
 'Index tab, Right Frame template for Top/Left/Right and Left/Right: the welcome page in the right frame, where the chosen pictures open.');

insert into template (tname, ttype, description, header, "pre-image", image1, image2, "post-image", footer)
select tname, 'C', description,
  replace(replace(rtrim(cast(readfile('templates/' || folder || '/header.htm') as text), char(13, 10)),
    char(13, 10), char(10)), char(10), char(13, 10)),
  replace(replace(rtrim(cast(readfile('templates/' || folder || '/pre-image.htm') as text), char(13, 10)),
    char(13, 10), char(10)), char(10), char(13, 10)),
  replace(replace(rtrim(cast(readfile('templates/' || folder || '/image1.htm') as text), char(13, 10)),
    char(13, 10), char(10)), char(10), char(13, 10)),
  replace(replace(rtrim(cast(readfile('templates/' || folder || '/image2.htm') as text), char(13, 10)),
    char(13, 10), char(10)), char(10), char(13, 10)),
  replace(replace(rtrim(cast(readfile('templates/' || folder || '/post-image.htm') as text), char(13, 10)),
    char(13, 10), char(10)), char(10), char(13, 10)),
  replace(replace(rtrim(cast(readfile('templates/' || folder || '/footer.htm') as text), char(13, 10)),
    char(13, 10), char(10)), char(10), char(13, 10))
from starting_template
order by rowid;

drop table starting_template;
